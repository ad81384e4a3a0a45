#include "rules/location.h"

#include <windows.h>
#include <shlobj.h>
#include <tinyxml.h>

#include "rules/registryrule.h"
#include "sysservices/registrykey.h"

namespace {

constexpr DWORD kBufferLength = 260;

CString FolderOfVariable(const CString& name) {
    wchar_t buffer[kBufferLength] = {};
    const DWORD length = GetEnvironmentVariableW(name.c_str(), buffer, kBufferLength);
    return length < kBufferLength ? CString(buffer, length) : CString();
}

CString FolderOfIndex(int32_t index) {
    wchar_t buffer[kBufferLength] = {};
    // A failed call may leave something in the buffer: it counts as empty.
    if (FAILED(SHGetFolderPathW(nullptr, index, nullptr, SHGFP_TYPE_CURRENT, buffer))) return {};
    return buffer;
}

}  // namespace

CString BaseFolder(int32_t folderIndex, const CString& folderEnvDir) {
    return folderIndex == -1 ? FolderOfVariable(folderEnvDir) : FolderOfIndex(folderIndex);
}

CString PathFromRegistry(const TiXmlElement& element, const CString& keyPath) {
    const HKEY root = RootKeyByName(element.Attribute("RootKey"));
    const CString valueName = Utf8ToWide(element.Attribute("Value"));
    if (!root || valueName.empty()) return {};
    const CRegistryKey key(root, keyPath.c_str(), KEY_READ);
    if (!key) return {};
    CString path;
    constexpr DWORD kBytes = kBufferLength * sizeof(wchar_t);
    key.ReadText(valueName.c_str(), kBytes, path);
    return path;
}
