#include "sysservices/registrykey.h"

#include <cwchar>

CRegistryKey::CRegistryKey(HKEY root, const wchar_t* path, REGSAM access) noexcept {
    if (RegOpenKeyExW(root, path, 0, access, &m_key) != ERROR_SUCCESS) m_key = nullptr;
}

CRegistryKey::~CRegistryKey() {
    if (m_key) RegCloseKey(m_key);
}

bool CRegistryKey::ReadText(const wchar_t* valueName, DWORD bytes, CString& out) const {
    // Longer than the call is told, and zeroed: a value may be stored without its terminator.
    out.assign(bytes / sizeof(wchar_t) + 2, L'\0');
    DWORD size = bytes;
    const LSTATUS status =
        RegQueryValueExW(m_key, valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(out.data()), &size);
    out.resize(status == ERROR_SUCCESS ? wcsnlen(out.data(), size / sizeof(wchar_t)) : 0);
    return status == ERROR_SUCCESS;
}
