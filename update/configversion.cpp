#include "update/configversion.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace {

constexpr wchar_t kSection[] = L"Config";
constexpr wchar_t kKey[] = L"version";

// Of the process, not of an update object; 1 before anything was loaded.
uint32_t g_version = 1;

}  // namespace

CString ConfigIniPath() {
    wchar_t buffer[MAX_PATH + 1];
    buffer[GetModuleFileNameW(nullptr, buffer, MAX_PATH)] = L'\0';
    const CString path = buffer;
    // Not the folder: as many characters as the file name has, plus one. Without a backslash the count is the length
    // plus one, and the prefix the whole path.
    const CString prefix = path.substr(0, path.size() - path.rfind(L'\\'));
    return JoinPath(prefix, L"dswconfig.ini");
}

uint32_t CurrentConfigVersion() noexcept {
    return g_version;
}

void LoadConfigVersion(const CString& iniPath) noexcept {
    // The default is the value in memory, so a missing file changes nothing; text that is no number reads 0.
    g_version = GetPrivateProfileIntW(kSection, kKey, static_cast<INT>(g_version), iniPath.c_str());
}

void StoreConfigVersion(const CString& iniPath, uint32_t version) noexcept {
    g_version = version;
    wchar_t text[16] = {};
    // Signed: versions of 2^31 and more are written as negative numbers, and what those read as is up to the system.
    _snwprintf(text, ARRAYSIZE(text) - 1, L"%04d", static_cast<int>(version));
    // Not examined: the version in memory holds even where the file cannot be written.
    WritePrivateProfileStringW(kSection, kKey, text, iniPath.c_str());
}

uint32_t ParseConfigVersion(const wchar_t* text) noexcept {
    return static_cast<uint32_t>(std::wcstol(text, nullptr, 10));
}
