#include "tests/support/tempfolder.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "sysservices/filesearch.h"

namespace {

void RemoveTree(const std::wstring& folder) {
    for (CFileSearch search((folder + L"\\*").c_str()); search; search.Next()) {
        const std::wstring name = search.Entry().cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        const DWORD attributes = search.Entry().dwFileAttributes;
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) DeleteFileW(path.c_str());
        // Never into a link's target.
        else if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
            RemoveTree(path);
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
    std::filesystem::create_directories(file.substr(0, file.rfind(L'\\')));
    std::ofstream stream(file.c_str(), std::ios::binary);
    EXPECT_TRUE(stream << content) << "cannot create a file";
    return file;
}

std::wstring TempFolder::MakeFolder(std::wstring_view name) const {
    std::wstring folder = *this / name;
    std::filesystem::create_directories(folder);
    return folder;
}

bool TempFolder::Has(std::wstring_view name) const {
    return GetFileAttributesW((*this / name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string ReadFileBytes(const std::wstring& path) {
    std::ifstream stream(path.c_str(), std::ios::binary);
    EXPECT_TRUE(stream) << "cannot open a file";
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}
