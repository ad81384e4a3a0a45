#pragma once

#include <string>

// Folders and files to be walked.

// Creates a folder and the folders on the way to it.
void MakeFolders(const std::wstring& path);

// Creates a file with `size` bytes in an existing folder. Throws when that fails.
void MakeFile(const std::wstring& path, unsigned size);

// The name of the n-th file of a folder, extension included. One in four is a ".tmp", and one in a hundred of those has
// one of kKeptTokens in its name.
std::wstring FileName(size_t n);
inline constexpr const char* kKeptTokens = "keep_|session|.lock|index";

// Fills an existing folder with `count` files named by FileName; one in sixteen has content.
void FillFolder(const std::wstring& folder, size_t count);

// A tree of a million files, all below C:\bench\tree: five parts "x0".."x4" of 200,000 files in 2,000 folders, each of
// which is two "p0", "p1" of 100,000, each of which is ten "a0".."a9" of 10,000, each of which is a hundred folders of
// a hundred files. It is built as far as it is asked for.
class FileTree {
public:
    // `filesPerFolder` is 100, or less for a small tree of the same shape.
    explicit FileTree(size_t filesPerFolder) : m_filesPerFolder(filesPerFolder) {}

    std::wstring TenThousand() { return Require(1, 1, 1) + L"\\x0\\p0\\a0"; }
    std::wstring HundredThousand() { return Require(1, 1, 10) + L"\\x0\\p0"; }
    std::wstring TwoHundredThousand() { return Require(1, 2, 10) + L"\\x0"; }
    std::wstring Million() { return Require(5, 2, 10); }
    size_t FilesPerFolder() const noexcept { return m_filesPerFolder; }

private:
    // The path of the whole tree.
    std::wstring Require(int parts, int halves, int tenths);

    const size_t m_filesPerFolder;
    bool m_made[5][2][10] = {};
};
