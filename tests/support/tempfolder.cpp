#include "tests/support/tempfolder.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

TempFolder::TempFolder() {
    wchar_t temp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temp);
    const std::wstring stem = std::wstring(temp) + L"dsw" + std::to_wstring(GetCurrentProcessId()) + L"_";
    static int serial = 0;
    do {
        m_path = stem + std::to_wstring(serial++);
    } while (!CreateDirectoryW(m_path.c_str(), nullptr) && GetLastError() == ERROR_ALREADY_EXISTS);
}

TempFolder::~TempFolder() {
    std::error_code leftToThePrefix;
    std::filesystem::remove_all(m_path, leftToThePrefix);
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
