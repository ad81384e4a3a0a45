#include "sysservices/registrykey.h"

#include <cwchar>

namespace {

HKEY Open(HKEY root, const wchar_t* path, REGSAM access) noexcept {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(root, path, 0, access, &key);
    if (status == ERROR_SUCCESS) return key;
    SetLastError(static_cast<DWORD>(status));
    return nullptr;
}

}  // namespace

CRegistryKey::CRegistryKey(HKEY root, const wchar_t* path, REGSAM access) noexcept : COwner(Open(root, path, access)) {}

bool CRegistryKey::Exists(HKEY root, const wchar_t* path) noexcept {
    return CRegistryKey(root, path, KEY_QUERY_VALUE) || GetLastError() == ERROR_ACCESS_DENIED;
}

bool CRegistryKey::HasValue(const wchar_t* name) const noexcept {
    return RegQueryValueExW(get(), name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

bool CRegistryKey::ReadText(const wchar_t* valueName, DWORD bytes, CString& out) const {
    // Longer than the call is told, and zeroed: a value may be stored without its terminator.
    out.assign(bytes / sizeof(wchar_t) + 2, L'\0');
    DWORD size = bytes;
    const LSTATUS status =
        RegQueryValueExW(get(), valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(out.data()), &size);
    out.resize(status == ERROR_SUCCESS ? wcsnlen(out.data(), size / sizeof(wchar_t)) : 0);
    return status == ERROR_SUCCESS;
}
