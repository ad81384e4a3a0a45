#pragma once

#include <cstddef>
#include <span>

#include "update/inethandle.h"

// One way of access to the network: the arguments of InternetOpenW.
struct OpenProfile {
    const wchar_t* agent;
    DWORD accessType;
    bool systemProxy;  // access type, proxy and bypass come from the system's proxy settings instead
    const wchar_t* proxy;
    const wchar_t* proxyBypass;
    DWORD flags;
};

// At most this many rows of the table are looked at.
inline constexpr size_t kMaxOpenProfiles = 4;

// The rows of the table, in the order in which they are tried, without the terminator.
std::span<const OpenProfile> OpenProfiles() noexcept;

// Opens the root handle of a row; null when it cannot be opened, which is traced where the cause is a query of its own.
CInetHandle OpenRoot(const OpenProfile& profile) noexcept;
