#include "host/check/knownfolder.h"

#include <windows.h>
#include <shlobj.h>

#include <algorithm>

#include "sysservices/literalpath.h"

namespace {

constexpr KnownFolder kFolders[] = {
    {-1, L"SystemDrive", L""},
    {-1, L"HOMEDRIVE", L""},
    {CSIDL_WINDOWS, L"SystemRoot", L"\\windows"},
    {-1, L"windir", L"\\windows"},
    {CSIDL_SYSTEM, nullptr, L"\\windows\\system32"},
    {CSIDL_SYSTEMX86, nullptr, L"\\windows\\syswow64"},
    {CSIDL_FONTS, nullptr, L"\\windows\\fonts"},
    {CSIDL_RESOURCES, nullptr, L"\\windows\\resources"},
    {CSIDL_RESOURCES_LOCALIZED, nullptr, L"\\windows\\resources\\0409"},
    {CSIDL_PROGRAM_FILES, L"ProgramFiles", L"\\program files"},
    {-1, L"ProgramW6432", L"\\program files"},
    {CSIDL_PROGRAM_FILESX86, L"ProgramFiles(x86)", L"\\program files (x86)"},
    {CSIDL_PROGRAM_FILES_COMMON, L"CommonProgramFiles", L"\\program files\\common files"},
    {-1, L"CommonProgramW6432", L"\\program files\\common files"},
    {CSIDL_PROGRAM_FILES_COMMONX86, L"CommonProgramFiles(x86)", L"\\program files (x86)\\common files"},
    {CSIDL_COMMON_APPDATA, L"ProgramData", L"\\programdata"},
    {-1, L"ALLUSERSPROFILE", L"\\programdata"},
    {CSIDL_COMMON_STARTMENU, nullptr, L"\\programdata\\microsoft\\windows\\start menu"},
    {CSIDL_COMMON_PROGRAMS, nullptr, L"\\programdata\\microsoft\\windows\\start menu\\programs"},
    {CSIDL_COMMON_ADMINTOOLS, nullptr,
     L"\\programdata\\microsoft\\windows\\start menu\\programs\\administrative tools"},
    {CSIDL_COMMON_STARTUP, nullptr, L"\\programdata\\microsoft\\windows\\start menu\\programs\\startup"},
    {CSIDL_COMMON_ALTSTARTUP, nullptr, L"\\programdata\\microsoft\\windows\\start menu\\programs\\startup"},
    {CSIDL_COMMON_TEMPLATES, nullptr, L"\\programdata\\microsoft\\windows\\templates"},
    {CSIDL_COMMON_OEM_LINKS, nullptr, L"\\programdata\\oem links"},
    {-1, L"PUBLIC", L"\\users\\public"},
    {CSIDL_COMMON_DESKTOPDIRECTORY, nullptr, L"\\users\\public\\desktop"},
    {CSIDL_COMMON_DOCUMENTS, nullptr, L"\\users\\public\\documents"},
    {CSIDL_COMMON_FAVORITES, nullptr, L"\\users\\public\\favorites"},
    {CSIDL_COMMON_MUSIC, nullptr, L"\\users\\public\\music"},
    {CSIDL_COMMON_PICTURES, nullptr, L"\\users\\public\\pictures"},
    {CSIDL_COMMON_VIDEO, nullptr, L"\\users\\public\\videos"},
    {CSIDL_PROFILE, L"USERPROFILE", L"\\users\\me"},
    {-1, L"OneDrive", L"\\users\\me\\onedrive"},
    {CSIDL_DESKTOP, nullptr, L"\\users\\me\\desktop"},
    {CSIDL_DESKTOPDIRECTORY, nullptr, L"\\users\\me\\desktop"},
    {CSIDL_PERSONAL, nullptr, L"\\users\\me\\documents"},
    {CSIDL_MYDOCUMENTS, nullptr, L"\\users\\me\\documents"},
    {CSIDL_FAVORITES, nullptr, L"\\users\\me\\favorites"},
    {CSIDL_MYMUSIC, nullptr, L"\\users\\me\\music"},
    {CSIDL_MYPICTURES, nullptr, L"\\users\\me\\pictures"},
    {CSIDL_MYVIDEO, nullptr, L"\\users\\me\\videos"},
    {CSIDL_LOCAL_APPDATA, L"LOCALAPPDATA", L"\\users\\me\\appdata\\local"},
    {-1, L"TEMP", L"\\users\\me\\appdata\\local\\temp"},
    {-1, L"TMP", L"\\users\\me\\appdata\\local\\temp"},
    {CSIDL_CDBURN_AREA, nullptr, L"\\users\\me\\appdata\\local\\microsoft\\windows\\burn\\burn"},
    {CSIDL_HISTORY, nullptr, L"\\users\\me\\appdata\\local\\microsoft\\windows\\history"},
    {CSIDL_INTERNET_CACHE, nullptr, L"\\users\\me\\appdata\\local\\microsoft\\windows\\inetcache"},
    {CSIDL_COOKIES, nullptr, L"\\users\\me\\appdata\\local\\microsoft\\windows\\inetcookies"},
    {CSIDL_APPDATA, L"APPDATA", L"\\users\\me\\appdata\\roaming"},
    {CSIDL_NETHOOD, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\network shortcuts"},
    {CSIDL_PRINTHOOD, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\printer shortcuts"},
    {CSIDL_RECENT, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\recent"},
    {CSIDL_SENDTO, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\sendto"},
    {CSIDL_STARTMENU, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\start menu"},
    {CSIDL_PROGRAMS, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\start menu\\programs"},
    {CSIDL_ADMINTOOLS, nullptr,
     L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\start menu\\programs\\administrative tools"},
    {CSIDL_STARTUP, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\start menu\\programs\\startup"},
    {CSIDL_ALTSTARTUP, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\start menu\\programs\\startup"},
    {CSIDL_TEMPLATES, nullptr, L"\\users\\me\\appdata\\roaming\\microsoft\\windows\\templates"},
    {CSIDL_BITBUCKET, nullptr, nullptr},
    {CSIDL_CONTROLS, nullptr, nullptr},
    {CSIDL_CONNECTIONS, nullptr, nullptr},
    {CSIDL_COMPUTERSNEARME, nullptr, nullptr},
    {CSIDL_DRIVES, nullptr, nullptr},
    {CSIDL_INTERNET, nullptr, nullptr},
    {CSIDL_NETWORK, nullptr, nullptr},
    {CSIDL_PRINTERS, nullptr, nullptr},
};

// Of the folders above these may be emptied whole.
constexpr const wchar_t* kJunkFolders[] = {L"temp", L"burn", L"history", L"inetcache", L"inetcookies", L"recent"};

// Precious, and no base folders.
constexpr const wchar_t* kPreciousFolders[] = {
    L"\\users",
    L"\\users\\me\\.gnupg",
    L"\\users\\me\\.ssh",
    L"\\users\\me\\appdata",
    L"\\users\\me\\appdata\\local\\google\\chrome\\user data",
    L"\\users\\me\\appdata\\local\\google\\chrome\\user data\\default",
    L"\\users\\me\\appdata\\local\\microsoft",
    L"\\users\\me\\appdata\\local\\microsoft\\edge\\user data",
    L"\\users\\me\\appdata\\local\\microsoft\\edge\\user data\\default",
    L"\\users\\me\\appdata\\local\\microsoft\\outlook",
    L"\\users\\me\\appdata\\local\\microsoft\\windows mail",
    L"\\users\\me\\appdata\\local\\packages",
    L"\\users\\me\\appdata\\local\\programs",
    L"\\users\\me\\appdata\\locallow",
    L"\\users\\me\\appdata\\roaming\\microsoft",
    L"\\users\\me\\appdata\\roaming\\mozilla\\firefox",
    L"\\users\\me\\appdata\\roaming\\mozilla\\firefox\\profiles",
    L"\\users\\me\\appdata\\roaming\\thunderbird",
    L"\\users\\me\\appdata\\roaming\\thunderbird\\profiles",
    L"\\users\\me\\contacts",
    L"\\users\\me\\saved games",
    L"\\programdata\\microsoft",
    L"\\programdata\\package cache",
    L"\\windows\\assembly",
    L"\\windows\\inf",
    L"\\windows\\installer",
    L"\\windows\\microsoft.net",
    L"\\windows\\servicing",
    L"\\windows\\system",
    L"\\windows\\system32\\config",
    L"\\windows\\system32\\drivers",
    L"\\windows\\system32\\driverstore",
    L"\\windows\\winsxs",
};

// With all that is below them.
constexpr const wchar_t* kPersonalFolders[] = {
    L"\\users\\me\\.gnupg",
    L"\\users\\me\\.ssh",
    L"\\users\\me\\contacts",
    L"\\users\\me\\desktop",
    L"\\users\\me\\documents",
    L"\\users\\me\\favorites",
    L"\\users\\me\\music",
    L"\\users\\me\\onedrive",
    L"\\users\\me\\pictures",
    L"\\users\\me\\videos",
    L"\\users\\public\\desktop",
    L"\\users\\public\\documents",
    L"\\users\\public\\music",
    L"\\users\\public\\pictures",
    L"\\users\\public\\videos",
    L"\\users\\me\\appdata\\local\\microsoft\\outlook",
    L"\\users\\me\\appdata\\local\\microsoft\\windows mail",
    L"\\users\\me\\appdata\\roaming\\thunderbird",
};

constexpr const wchar_t* kProgramFolders[] = {L"\\program files\\common files\\",
                                              L"\\program files (x86)\\common files\\", L"\\program files\\",
                                              L"\\program files (x86)\\", L"\\users\\me\\appdata\\local\\programs\\"};

constexpr const wchar_t* kJunkWords[] = {L"cache", L"crash", L"dump", L"log", L"report", L"temp", L"tmp"};

bool EqualIgnoringCase(std::wstring_view a, std::wstring_view b) {
    return ToLower(a) == ToLower(b);
}

std::wstring_view LastName(std::wstring_view path) noexcept {
    return path.substr(path.rfind(L'\\') + 1);
}

// The path behind its drive or share.
std::wstring_view WithoutRoot(std::wstring_view path) noexcept {
    if (path.starts_with(L"\\\\?\\")) path.remove_prefix(4);
    if (path.size() >= 2 && path[1] == L':') return path.substr(2);
    if (!path.starts_with(L"\\\\")) return path;
    const size_t share = path.find(L'\\', 2);
    const size_t end = share == std::wstring_view::npos ? share : path.find(L'\\', share + 1);
    return end == std::wstring_view::npos ? std::wstring_view() : path.substr(end);
}

}  // namespace

const KnownFolder* FindKnownFolder(int32_t index) {
    // The upper bits are flags of the call.
    const auto found = std::find_if(std::begin(kFolders), std::end(kFolders),
                                    [&](const KnownFolder& folder) { return folder.index == (index & 0xFF); });
    return found == std::end(kFolders) ? nullptr : found;
}

const KnownFolder* FindKnownFolder(std::wstring_view variable) {
    const auto found = std::find_if(std::begin(kFolders), std::end(kFolders), [&](const KnownFolder& folder) {
        return folder.variable && EqualIgnoringCase(folder.variable, variable);
    });
    return found == std::end(kFolders) ? nullptr : found;
}

std::vector<std::wstring> FolderVariables() {
    std::vector<std::wstring> names;
    for (const KnownFolder& folder : kFolders) {
        if (folder.variable) names.emplace_back(folder.variable);
    }
    return names;
}

std::wstring NormalPath(std::wstring_view path) {
    // Read by Windows itself, as the engine's searches are; the drive is no machine's.
    const std::wstring full = FullPath(L"C:\\" + std::wstring(WithoutRoot(path)));
    std::vector<std::wstring> names = Split(ToLower(WithoutRoot(full)), L"\\");
    if (names.size() > 1 && names[0] == L"users" && names[1] != L"public") names[1] = L"me";
    std::wstring normal;
    for (const std::wstring& name : names)
        normal += L'\\' + name;
    return normal;
}

bool IsAbsolutePath(std::wstring_view path) noexcept {
    const bool hasDrive = path.size() >= 3 && path[1] == L':' && (path[2] == L'\\' || path[2] == L'/');
    return hasDrive || path.starts_with(L"\\\\");
}

bool IsPreciousFolder(std::wstring_view normalPath) {
    const auto isAt = [&](const wchar_t* path) { return path && normalPath == path; };
    const auto isLast = [&](const wchar_t* name) { return LastName(normalPath) == name; };
    if (std::any_of(std::begin(kPreciousFolders), std::end(kPreciousFolders), isAt)) return true;
    if (std::any_of(std::begin(kJunkFolders), std::end(kJunkFolders), isLast)) return false;
    return std::any_of(std::begin(kFolders), std::end(kFolders),
                       [&](const KnownFolder& folder) { return isAt(folder.path); });
}

bool IsPersonalFolder(std::wstring_view normalPath) {
    if (normalPath == L"\\users" || normalPath == L"\\users\\me" || normalPath == L"\\users\\public") return true;
    return std::any_of(std::begin(kPersonalFolders), std::end(kPersonalFolders), [&](std::wstring_view folder) {
        return normalPath == folder || (normalPath.starts_with(folder) && normalPath[folder.size()] == L'\\');
    });
}

bool IsFolderOfPrograms(std::wstring_view normalPath) {
    return normalPath == L"\\windows" || (normalPath.starts_with(L"\\windows\\") && LastName(normalPath) != L"temp")
           || normalPath == L"\\program files" || normalPath == L"\\program files (x86)" || IsProgramFolder(normalPath);
}

bool IsProgramFolder(std::wstring_view normalPath) {
    const auto root = std::find_if(std::begin(kProgramFolders), std::end(kProgramFolders),
                                   [&](const wchar_t* folder) { return normalPath.starts_with(folder); });
    if (root == std::end(kProgramFolders)) return false;
    // The first name is the program's own, whatever words it is made of.
    const size_t program = std::wstring_view(*root).size();
    const size_t inside = normalPath.find(L'\\', program);
    if (inside == std::wstring_view::npos) return true;
    return std::none_of(std::begin(kJunkWords), std::end(kJunkWords),
                        [&](const wchar_t* word) { return normalPath.find(word, inside) != std::wstring_view::npos; });
}
