#pragma once

#include <windows.h>

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
