#pragma once

#include <windows.h>

#include <cstdint>

#include "sysservices/text.h"

// Where a rule looks: the parts of its location that differ between machines.

// The base folder of a rule: that of an environment variable, or of a shell folder identifier (CSIDL). False when the
// variable is not set or the folder has no path; `folder` is empty then, and may be empty otherwise. A value of 260
// characters or more counts as not set: a shortened path is never used. The folder need not exist.
bool FolderOfVariable(const CString& name, CString& folder);
bool FolderOfIndex(int32_t index, CString& folder);

// The location of a rule that is kept in a registry value: the text of the value of that name under root\keyPath. Empty
// when anything of that is missing, a null root or an empty name included. The value's type is not looked at and
// nothing in it is expanded.
CString PathFromRegistry(HKEY root, const CString& keyPath, const CString& valueName);
