#include "bench/filetree.h"

#include <windows.h>

#include <filesystem>

#include "host/common/hosterror.h"
#include "sysservices/handle.h"

namespace {

constexpr wchar_t kRoot[] = L"C:\\bench\\tree";
constexpr int kFoldersPerTenth = 100;

// Wine looks through the whole folder for a new name in another spelling, which is hopeless for a hundred thousand of
// them. Unix paths it takes as they are; elsewhere there is no such function, and no need.
std::wstring UnixPath(const std::wstring& path) {
    using GetUnixFileName = char*(CDECL*)(const wchar_t*);
    void* address =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name"));
    if (!address) return path;
    char* name = reinterpret_cast<GetUnixFileName>(address)(path.c_str());
    if (!name) return path;
    const std::wstring wide = Utf8ToWide(name);
    HeapFree(GetProcessHeap(), 0, name);
    return L"\\\\?\\unix" + wide;
}

}  // namespace

void MakeFolders(const std::wstring& path) {
    std::filesystem::create_directories(path);
}

void MakeFile(const std::wstring& path, unsigned size) {
    const CHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    static const char kContent[256] = {};
    DWORD written = 0;
    if (!file || (size > 0 && !WriteFile(file.get(), kContent, size, &written, nullptr)))
        throw CHostError(L"cannot create " + path);
}

std::wstring FileName(size_t n) {
    static const wchar_t* const kExtensions[] = {L".tmp", L".log", L".dat", L".cache"};
    static const wchar_t* const kKept[] = {L"keep_", L"session", L"x.lock", L"index"};
    const wchar_t* stem = n % 400 == 0 ? kKept[n / 400 % 4] : L"item_";
    return stem + std::to_wstring(n) + kExtensions[n % 4];
}

void FillFolder(const std::wstring& folder, size_t count) {
    const std::wstring prefix = UnixPath(folder) + L"\\";
    for (size_t n = 0; n < count; ++n)
        MakeFile(prefix + FileName(n), n % 16 == 0 ? 1 + static_cast<unsigned>(n % 200) : 0);
}

std::wstring FileTree::Require(int parts, int halves, int tenths) {
    for (int x = 0; x < parts; ++x) {
        for (int p = 0; p < halves; ++p) {
            for (int a = 0; a < tenths; ++a) {
                if (m_made[x][p][a]) continue;
                m_made[x][p][a] = true;
                const std::wstring tenth =
                    kRoot + (L"\\x" + std::to_wstring(x)) + L"\\p" + std::to_wstring(p) + L"\\a" + std::to_wstring(a);
                for (int folder = 0; folder < kFoldersPerTenth; ++folder) {
                    const std::wstring path = tenth + L"\\folder" + std::to_wstring(folder);
                    MakeFolders(path);
                    FillFolder(path, m_filesPerFolder);
                }
            }
        }
    }
    return kRoot;
}
