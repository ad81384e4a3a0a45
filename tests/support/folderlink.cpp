#include "tests/support/folderlink.h"

#include <windows.h>

namespace {

std::wstring HostName(const std::wstring& path) {
    using Convert = char*(CDECL*)(const wchar_t*);
    const auto convert = reinterpret_cast<Convert>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    char* name = convert ? convert(path.c_str()) : nullptr;
    const std::string text = name ? name : "";
    if (name) HeapFree(GetProcessHeap(), 0, name);
    return {text.begin(), text.end()};
}

bool IsFolderLink(const std::wstring& path) {
    constexpr DWORD kLink = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kLink) == kLink;
}

}  // namespace

bool MakeFolderLink(const std::wstring& link, const std::wstring& target) {
    // The link does not exist yet, so its own name cannot be converted.
    const size_t slash = link.rfind(L'\\');
    std::wstring command = L"ln -sfn \"" + HostName(target) + L"\" \"" + HostName(link.substr(0, slash)) + L"/"
                           + link.substr(slash + 1) + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\ln", command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return false;
    // The command is no process of this platform: it cannot be waited for, and what is handed out as its handles must
    // not be closed.
    for (int tries = 0; tries < 200 && !IsFolderLink(link); ++tries)
        Sleep(10);
    return IsFolderLink(link);
}
