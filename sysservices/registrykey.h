#pragma once

#include "sysservices/owner.h"
#include "sysservices/text.h"

struct RegistryKeyKind {
    using Value = HKEY;
    static void GiveBack(HKEY key) noexcept { RegCloseKey(key); }
};

// An opened registry key. Predefined roots are passed as plain HKEYs and never owned.
class CRegistryKey : public COwner<RegistryKeyKind> {
public:
    // Opens root\path. Test the object for success; an unopened key is null, and the thread's last error tells why.
    CRegistryKey(HKEY root, const wchar_t* path, REGSAM access) noexcept;

    // Is there such a key? One that may not be opened is: who may not look into it may still delete it.
    static bool Exists(HKEY root, const wchar_t* path) noexcept;

    // Is there such a value, be it empty?
    bool HasValue(const wchar_t* name) const noexcept;
    // Reads a value of whatever type as text, up to its first NUL; nothing in it is expanded. `bytes` is the room that
    // the stored value, terminator included, may take: a longer one is not read, never shortened. False, with `out`
    // empty, when there is no such value or it is too long.
    bool ReadText(const wchar_t* valueName, DWORD bytes, CString& out) const;
};
