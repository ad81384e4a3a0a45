#include "rules/location.h"

#include <shlobj.h>

#include "sysservices/registrykey.h"

namespace {

constexpr DWORD kBufferLength = 260;

}  // namespace

bool FolderOfVariable(const CString& name, CString& folder) {
    wchar_t buffer[kBufferLength] = {};
    const DWORD length = GetEnvironmentVariableW(name.c_str(), buffer, kBufferLength);
    folder.assign(buffer, length < kBufferLength ? length : 0);
    return !folder.empty();
}

bool FolderOfIndex(int32_t index, CString& folder) {
    wchar_t buffer[kBufferLength] = {};
    const bool found = SUCCEEDED(SHGetFolderPathW(nullptr, index, nullptr, SHGFP_TYPE_CURRENT, buffer));
    // A failed call may leave something in the buffer.
    folder = found ? buffer : L"";
    return found;
}

CString PathFromRegistry(HKEY root, const CString& keyPath, const CString& valueName) {
    if (!root || valueName.empty()) return {};
    const CRegistryKey key(root, keyPath.c_str(), KEY_READ);
    if (!key) return {};
    CString path;
    constexpr DWORD kBytes = kBufferLength * sizeof(wchar_t);
    key.ReadText(valueName.c_str(), kBytes, path);
    return path;
}
