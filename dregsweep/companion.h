#pragma once

#include <windows.h>

#include <cstdint>

#include "dregsweep/icompanionobject.h"
#include "dregsweep/iusageevents.h"

// The two optional companion libraries. Without them everything here answers null and nothing is lost.
//
// The libraries are loaded again for every look-up and never freed: their objects may be in use until the process ends.
// C++ exceptions that a companion throws are dropped; a structured exception, such as an access violation or the C++
// exception of another compiler's runtime, is not caught and reaches the crash filter. Any thread.

// The start-up companion, for LoadFactoryExport.
inline constexpr char kTallyhostLibrary[] = "Tallyhost.dll";

// Loads a library from the folder of this module, or by its bare name when this module's path cannot be had.
// `fileName` is a bare name in the ANSI code page.
[[nodiscard]] HMODULE LoadBesideModule(const char* fileName) noexcept;

// The export of kxaide, taken from beside this module; null when there is no library or no such export.
[[nodiscard]] void* FindKxaideExport(const char* exportName) noexcept;

// The usage-event object, or null. Kept from the first time there is one; until then every call asks again.
[[nodiscard]] IUsageEvents* GetUsageEvents() noexcept;

// Sends one event code if there is a usage-event object. Whatever it throws is dropped, and nothing is tried twice.
void SendUsageEvent(uint32_t code) noexcept;

// Loads a library by its bare name through the ordinary search, not beside this module, and returns what its factory
// export makes (null for the name means "GetImp"): an object with one reference, which the caller owns. Null when the
// library or the export is missing, and when the factory throws.
[[nodiscard]] ICompanionObject* LoadFactoryExport(const char* library, const char* exportName) noexcept;
