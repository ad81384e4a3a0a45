#pragma once

#include <windows.h>

#include <utility>

#include "sysservices/text.h"

// An opened registry key, closed when it goes out of scope. Predefined roots are passed as plain HKEYs and never owned.
class CRegistryKey {
public:
    // Opens root\path. Test the object for success; an unopened key is null.
    CRegistryKey(HKEY root, const wchar_t* path, REGSAM access) noexcept;
    ~CRegistryKey();
    CRegistryKey(CRegistryKey&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
    CRegistryKey& operator=(CRegistryKey&&) = delete;

    explicit operator bool() const noexcept { return m_key != nullptr; }
    HKEY get() const noexcept { return m_key; }

    // Reads a value of whatever type as text, up to its first NUL; nothing in it is expanded. `bytes` is the room that
    // the stored value, terminator included, may take: a longer one is not read, never shortened. False, with `out`
    // empty, when there is no such value or it is too long.
    bool ReadText(const wchar_t* valueName, DWORD bytes, CString& out) const;

private:
    HKEY m_key = nullptr;
};
