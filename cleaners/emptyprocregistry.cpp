#include "cleaners/emptyprocregistry.h"

#include "cleaners/emptyprocname.h"
#include "cleaners/garbageclearhistoryproc.h"

namespace {

// Null before any static object is built, so that entries of every source file can register in any order.
constinit EmptyProcEntry* g_head = nullptr;
constinit EmptyProcEntry* g_tail = nullptr;

// The registered procedures. They stand here and not beside their classes because the linker drops those object files
// of a static library that nothing refers to.
EmptyProcEntry g_clearHistory(kClearHistoryName, GarbageXProc::CreateClearHistoryProc);

}  // namespace

EmptyProcEntry::EmptyProcEntry(const wchar_t* procName, EmptyProcFactory procFactory) noexcept {
    EmptyProcRegistry::Register(*this, procName, procFactory);
}

namespace EmptyProcRegistry {

void Register(EmptyProcEntry& entry, const wchar_t* name, EmptyProcFactory factory) noexcept {
    try {
        entry.name = name;
    } catch (...) {
        return;  // without memory for its name nobody can ask for it; the host's load goes on
    }
    entry.factory = factory;
    entry.next = nullptr;
    entry.reserved = nullptr;
    (g_tail ? g_tail->next : g_head) = &entry;
    g_tail = &entry;
}

std::unique_ptr<CGarbageEmptyProc> CreateByName(const CString& name) noexcept {
    const EmptyProcEntry* entry = g_head;
    while (entry && entry->name != name)
        entry = entry->next;
    // The first entry of the name decides, even when its factory is null and a later one has a better.
    if (!entry || !entry->factory) return nullptr;
    return std::unique_ptr<CGarbageEmptyProc>(entry->factory());
}

}  // namespace EmptyProcRegistry
