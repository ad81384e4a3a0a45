#pragma once

#include <windows.h>

#include <cstdint>
#include <cwchar>

// The floors of the rows that walk folders: plain walks with one path buffer and nothing but the searches.

struct WalkCount {
    uint64_t items = 0;
    uint64_t bytes = 0;
};

class BareWalk {
public:
    // Everything in and below a folder, in one pass.
    static WalkCount All(const wchar_t* folder) {
        BareWalk walk(L"*");
        walk.Everything(walk.Start(folder));
        return walk.m_count;
    }
    // The files that match a pattern, in and below a folder: a search for the folders and one for the files.
    static WalkCount Matching(const wchar_t* folder, const wchar_t* pattern) {
        BareWalk walk(pattern);
        walk.FoldersAndMatches(walk.Start(folder));
        return walk.m_count;
    }
    // The files of one folder only.
    static WalkCount OneFolder(const wchar_t* folder, const wchar_t* pattern) {
        BareWalk walk(pattern);
        walk.Matches(walk.Start(folder));
        return walk.m_count;
    }

private:
    explicit BareWalk(const wchar_t* pattern) : m_pattern(pattern) {}

    wchar_t* Start(const wchar_t* folder) {
        const size_t length = std::wcslen(folder);
        std::wmemcpy(m_path, folder, length);
        return m_path + length;
    }
    // Writes "\" and the name at `end`, the end of the folder's path; returns the new end.
    static wchar_t* Append(wchar_t* end, const wchar_t* name) {
        const size_t length = std::wcslen(name);
        *end = L'\\';
        std::wmemcpy(end + 1, name, length + 1);
        return end + 1 + length;
    }
    static bool IsDots(const wchar_t* name) {
        return name[0] == L'.' && (name[1] == 0 || (name[1] == L'.' && name[2] == 0));
    }
    void Count(const WIN32_FIND_DATAW& entry) {
        ++m_count.items;
        m_count.bytes += (static_cast<uint64_t>(entry.nFileSizeHigh) << 32) + entry.nFileSizeLow;
    }

    void Everything(wchar_t* end) {
        WIN32_FIND_DATAW entry;
        Append(end, L"*");
        const HANDLE search = FindFirstFileW(m_path, &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                Count(entry);
            else if (!IsDots(entry.cFileName))
                Everything(Append(end, entry.cFileName));
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }

    void FoldersAndMatches(wchar_t* end) {
        WIN32_FIND_DATAW entry;
        Append(end, L"*");
        const HANDLE search = FindFirstFileW(m_path, &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !IsDots(entry.cFileName))
                FoldersAndMatches(Append(end, entry.cFileName));
        } while (FindNextFileW(search, &entry));
        FindClose(search);
        Matches(end);
    }

    void Matches(wchar_t* end) {
        WIN32_FIND_DATAW entry;
        Append(end, m_pattern);
        const HANDLE search = FindFirstFileW(m_path, &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) Count(entry);
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }

    const wchar_t* const m_pattern;
    WalkCount m_count;
    wchar_t m_path[MAX_PATH];
};
