#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The folders of Windows as they are on most machines, so that a rule can be judged on any. Paths are lower-cased and
// have no drive: "" is the root of one, "\users\me" stands for every profile.

struct KnownFolder {
    int32_t index;            // CSIDL, or -1
    const wchar_t* variable;  // environment variable, or null
    const wchar_t* path;      // null: a folder of the shell, without a path
};

// Null when Windows has no such folder or variable of its own.
const KnownFolder* FindKnownFolder(int32_t index);
const KnownFolder* FindKnownFolder(std::wstring_view variable);
// The variables that name folders.
std::vector<std::wstring> FolderVariables();

// The form above of an absolute path.
std::wstring NormalPath(std::wstring_view path);
bool IsAbsolutePath(std::wstring_view path) noexcept;

// Holds more than junk: nobody means to empty the whole of it.
bool IsPreciousFolder(std::wstring_view normalPath);
// What people make and collect, which no pattern tells from junk: their documents, pictures, mail, keys and the like,
// or a profile as a whole.
bool IsPersonalFolder(std::wstring_view normalPath);
// Windows, or the folder of an installed program, or one above.
bool IsFolderOfPrograms(std::wstring_view normalPath);
// Lies in a folder of installed programs, and nothing in its name says that it is for what they leave behind.
bool IsProgramFolder(std::wstring_view normalPath);
