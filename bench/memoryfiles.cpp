#include "bench/memoryfiles.h"

#include <cwchar>
#include <vector>

#include "bench/filetree.h"
#include "bench/pieces.h"

namespace {

constexpr size_t kRootLength = std::wstring_view(MemoryFiles::kRoot).size();

// What a stub copies, and no more: a true search fills in times and a short name as well.
struct Entry {
    DWORD attributes;
    DWORD size;
    wchar_t name[20];
};
using Entries = std::vector<Entry>;

struct Search {
    const Entry* next;
    const Entry* end;
};

Entries g_folders;
Entries g_files;
Entries g_temporaryFiles;
size_t g_filesOfEverything;  // that a search for "*" in a folder gives to a rule
size_t g_filesOfPattern;     // and one for "*.tmp"
// A walk has one search of the root open at a time, and one of a folder.
Search g_searchOfRoot;
Search g_searchOfFolder;

BOOL WINAPI NextFile(HANDLE handle, WIN32_FIND_DATAW* data) {
    Search& search = *static_cast<Search*>(handle);
    if (search.next == search.end) return FALSE;
    const Entry& entry = *search.next++;
    data->dwFileAttributes = entry.attributes;
    data->nFileSizeHigh = 0;
    data->nFileSizeLow = entry.size;
    std::wmemcpy(data->cFileName, entry.name, std::size(entry.name));
    return TRUE;
}

HANDLE Start(Search& search, const Entries& entries, WIN32_FIND_DATAW* data) {
    search = {entries.data(), entries.data() + entries.size()};
    NextFile(&search, data);
    return &search;
}

// "*" or "*.tmp", in the root or in a folder: told apart by the length and the last letter.
HANDLE WINAPI FirstFile(const wchar_t* path, WIN32_FIND_DATAW* data) {
    const size_t length = std::wcslen(path);
    const bool isEverything = path[length - 1] == L'*';
    if (length - kRootLength < std::size(L"\\folder"))
        return isEverything ? Start(g_searchOfRoot, g_folders, data) : INVALID_HANDLE_VALUE;
    CountSteps(isEverything ? g_filesOfEverything : g_filesOfPattern);
    return Start(g_searchOfFolder, isEverything ? g_files : g_temporaryFiles, data);
}

BOOL WINAPI CloseSearch(HANDLE) {
    return TRUE;
}

BOOL WINAPI DeleteNothing(const wchar_t*) {
    CountSteps(1);
    return TRUE;
}

Stubs Replace(HMODULE module) {
    return {module,
            {{"FindFirstFileW", &FirstFile},
             {"FindNextFileW", &NextFile},
             {"FindClose", &CloseSearch},
             {"DeleteFileW", &DeleteNothing}}};
}

void Add(Entries& entries, DWORD attributes, const std::wstring& name, DWORD size = 0) {
    Entry entry{attributes, size, {}};
    name.copy(entry.name, std::size(entry.name) - 1);
    entries.push_back(entry);
}

Entries EmptyFolder() {
    Entries entries;
    Add(entries, FILE_ATTRIBUTE_DIRECTORY, L".");
    Add(entries, FILE_ATTRIBUTE_DIRECTORY, L"..");
    return entries;
}

void MakeFiles() {
    g_files = EmptyFolder();
    g_temporaryFiles.clear();
    // From 1 on: the first has a name that rules keep.
    for (size_t n = 1; n <= 100; ++n) {
        const std::wstring name = FileName(n);
        Add(g_files, FILE_ATTRIBUTE_ARCHIVE, name, n % 16 == 0 ? 100 : 0);
        if (name.ends_with(L".tmp")) g_temporaryFiles.push_back(g_files.back());
    }
}

void MakeRoot(size_t count) {
    g_folders = EmptyFolder();
    for (size_t n = 0; n < count; ++n)
        Add(g_folders, FILE_ATTRIBUTE_DIRECTORY, L"folder" + std::to_wstring(n));
}

}  // namespace

MemoryFiles::MemoryFiles(HMODULE engine, std::wstring_view pattern, size_t count)
    : m_ofEngine(Replace(engine)),
      m_ofBenchmark(Replace(GetModuleHandleW(nullptr))) {
    MakeFiles();
    g_filesOfEverything = pattern == L"*" ? 100 : 0;
    g_filesOfPattern = g_temporaryFiles.size();
    MakeRoot(count / (pattern == L"*" ? g_filesOfEverything : g_filesOfPattern));
}
