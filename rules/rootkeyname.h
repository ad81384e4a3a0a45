#pragma once

#include <windows.h>

#include "sysservices/text.h"

// The names by which rules give a root of the registry, compared as written. "HKUR" is HKEY_USERS.
struct RootKeyName {
    const char* name;
    HKEY root;
    const wchar_t* shown;  // to people
};

inline const RootKeyName kRootKeyNames[] = {
    {"HKLM", HKEY_LOCAL_MACHINE, L"HKLM"},
    {"HKCU", HKEY_CURRENT_USER, L"HKCU"},
    {"HKCR", HKEY_CLASSES_ROOT, L"HKCR"},
    {"HKUR", HKEY_USERS, L"HKU"},
};

// The root of that name; null for anything else, a null name included.
HKEY RootKeyByName(const char* name) noexcept;

// A path with its root, as people write it: "HKCU\\Software".
CString KeyText(HKEY root, const CString& path);
