#pragma once

#include <windows.h>

#include <utility>

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

private:
    HKEY m_key = nullptr;
};
