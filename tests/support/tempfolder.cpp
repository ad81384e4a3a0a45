#include "tests/support/tempfolder.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

void MakeFolders(const std::wstring& path, size_t from) {
    for (size_t at = path.find(L'\\', from); at != std::wstring::npos; at = path.find(L'\\', at + 1)) {
        CreateDirectoryW(path.substr(0, at).c_str(), nullptr);
    }
    CreateDirectoryW(path.c_str(), nullptr);
}

void RemoveTree(const std::wstring& folder) {
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = entry.cFileName;
            if (name == L"." || name == L"..") continue;
            const std::wstring path = folder + L"\\" + name;
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            const bool isFolder = entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
            // A link goes without its target's content.
            if (isFolder && !(entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) RemoveTree(path);
            if (!isFolder) DeleteFileW(path.c_str());
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }
    RemoveDirectoryW(folder.c_str());
}

}  // namespace

TempFolder::TempFolder() {
    wchar_t temp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temp);
    const std::wstring stem = std::wstring(temp) + L"dsw" + std::to_wstring(GetCurrentProcessId()) + L"_";
    int serial = 0;
    do {
        m_path = stem + std::to_wstring(serial++);
    } while (!CreateDirectoryW(m_path.c_str(), nullptr) && GetLastError() == ERROR_ALREADY_EXISTS);
}

TempFolder::~TempFolder() {
    RemoveTree(m_path);
}

std::wstring TempFolder::Write(std::wstring_view name, std::string_view content) const {
    std::wstring file = *this / name;
    MakeFolders(file.substr(0, file.rfind(L'\\')), m_path.size());
    const File stream(_wfopen(file.c_str(), L"wb"));
    EXPECT_TRUE(stream) << "cannot create a file";
    if (stream) std::fwrite(content.data(), 1, content.size(), stream.get());
    return file;
}

std::wstring TempFolder::MakeFolder(std::wstring_view name) const {
    std::wstring folder = *this / name;
    MakeFolders(folder, m_path.size());
    return folder;
}

bool TempFolder::Has(std::wstring_view name) const {
    return GetFileAttributesW((*this / name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string ReadFileBytes(const std::wstring& path) {
    const File stream(_wfopen(path.c_str(), L"rb"));
    EXPECT_TRUE(stream) << "cannot open a file";
    std::string bytes;
    char chunk[4096];
    for (size_t got = 0; stream && (got = std::fread(chunk, 1, sizeof chunk, stream.get())) > 0;)
        bytes.append(chunk, got);
    return bytes;
}
