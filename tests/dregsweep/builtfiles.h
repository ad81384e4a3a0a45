#pragma once

#include <windows.h>

#include <string>

// The path of a file that the build puts beside the test executable.
inline std::wstring BuiltFile(const wchar_t* name) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring self(path);
    return self.substr(0, self.rfind(L'\\') + 1) + name;
}

// Copies a built file; returns the path of the copy, empty when that failed.
inline std::wstring CopyBuilt(const wchar_t* name, const std::wstring& copy) {
    return CopyFileW(BuiltFile(name).c_str(), copy.c_str(), TRUE) ? copy : std::wstring();
}

template <class Function>
Function ExportOf(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}
