#pragma once

#include <windows.h>

// Facts about the system, each looked up on the first call and kept. Any thread.

// Is this a 32-bit process on a 64-bit system?
bool IsWow64() noexcept;

// The build number of Windows; 0 as long as the system does not tell it, which is asked for again on each call.
DWORD GetBuildNumber() noexcept;

// Is the build below 2601? A build that cannot be told counts as old.
bool IsXpOrOlder() noexcept;
