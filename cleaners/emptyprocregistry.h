#pragma once

#include <memory>

#include "cleaners/garbageemptyproc.h"
#include "sysservices/text.h"

// The cleaning procedures by name. Entries are static objects that link themselves into the list while the module's
// static objects are built, and stay until it unloads; afterwards any thread may look names up.
//
// To add a procedure: derive from CGarbageEmptyProc, write its factory, and add an entry beside the others in
// emptyprocregistry.cpp.

// Returns a new object, or null when there is no memory for it.
using EmptyProcFactory = CGarbageEmptyProc* (*)() noexcept;

struct EmptyProcEntry {
    // Registers itself behind the entries there are. `factory` may be null; the name then yields no object.
    EmptyProcEntry(const wchar_t* procName, EmptyProcFactory procFactory) noexcept;
    EmptyProcEntry(const EmptyProcEntry&) = delete;
    EmptyProcEntry& operator=(const EmptyProcEntry&) = delete;

    EmptyProcFactory factory = nullptr;
    CString name;
    EmptyProcEntry* next = nullptr;
    void* reserved = nullptr;
};

namespace EmptyProcRegistry {

// Makes `entry` the last of the list, with a copy of `name`, which is compared exactly. The entry must live as long as
// the module. Only for static initialisation: there is no lock.
void Register(EmptyProcEntry& entry, const wchar_t* name, EmptyProcFactory factory) noexcept;

// A new object from the entry of that name, upper and lower case told apart, that was registered first; null when no
// entry has the name, its factory is null or memory is short.
[[nodiscard]] std::unique_ptr<CGarbageEmptyProc> CreateByName(const CString& name) noexcept;

}  // namespace EmptyProcRegistry
