#pragma once

#include <string>
#include <string_view>

// A new folder below the prefix's temporary folder, removed with all its content at the end of the scope. Relative
// names use "\" as separator.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::wstring& path() const { return m_path; }
    std::wstring operator/(std::wstring_view name) const { return m_path + L"\\" + std::wstring(name); }

    // Creates the file, and the folders on the way to it, with these bytes; returns its full path.
    std::wstring Write(std::wstring_view name, std::string_view content = "x") const;
    // Creates a folder and the folders on the way to it; returns its full path.
    std::wstring MakeFolder(std::wstring_view name) const;
    bool Has(std::wstring_view name) const;

private:
    std::wstring m_path;
};

// The whole content of a file; fails the test when it cannot be read.
std::string ReadFileBytes(const std::wstring& path);
