#pragma once

#include <cstdint>

#include "sysservices/text.h"

// The number of the installed rule version: one for the whole process, without a lock, kept in an INI file.

// The path of the INI file, which derives from the path of the process's executable.
CString ConfigIniPath();

uint32_t CurrentConfigVersion() noexcept;

// Reads the version from the file; what the file does not tell stays as it is in memory.
void LoadConfigVersion(const CString& iniPath) noexcept;

// Sets the version in memory and writes it to the file.
void StoreConfigVersion(const CString& iniPath, uint32_t version) noexcept;

// Reads a published version: decimal, leading blanks and a sign allowed, up to the first other character; no digits
// give 0, a number out of range its limit.
uint32_t ParseConfigVersion(const wchar_t* text) noexcept;
