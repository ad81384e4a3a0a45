#include "dregsweep/companion.h"

#include <atomic>
#include <string>

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this module begins

namespace {

std::atomic<IUsageEvents*> g_usageEvents{nullptr};  // two threads may both ask: they store the same object

// The folder of this module with its trailing backslash; empty when the path cannot be had.
std::string ModuleFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(reinterpret_cast<HMODULE>(&__ImageBase), path, MAX_PATH);
    path[MAX_PATH - 1] = '\0';
    std::string folder(path);
    folder.erase(folder.rfind('\\') + 1);
    return folder;
}

void* FindExport(HMODULE library, const char* name) noexcept {
    return library ? reinterpret_cast<void*>(GetProcAddress(library, name)) : nullptr;
}

template <class Object>
Object* CallFactory(void* factory) noexcept {
    if (!factory) return nullptr;
    try {
        return reinterpret_cast<Object* (*)()>(factory)();
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

HMODULE LoadBesideModule(const char* fileName) noexcept {
    try {
        // Joined in a string: folder and name together may exceed the path buffer.
        return LoadLibraryA((ModuleFolder() + fileName).c_str());
    } catch (...) {
        return nullptr;
    }
}

void* FindKxaideExport(const char* exportName) noexcept {
    // A 32-bit process cannot load the first and goes on to the second.
    HMODULE library = LoadBesideModule("kxaide64.dll");
    if (!library) library = LoadBesideModule("kxaide.dll");
    return FindExport(library, exportName);
}

IUsageEvents* GetUsageEvents() noexcept {
    IUsageEvents* events = g_usageEvents.load(std::memory_order_acquire);
    if (events) return events;
    events = CallFactory<IUsageEvents>(FindKxaideExport("GetTolvane"));
    if (events) g_usageEvents.store(events, std::memory_order_release);
    return events;
}

void SendUsageEvent(uint32_t code) noexcept {
    IUsageEvents* events = GetUsageEvents();
    if (!events) return;
    try {
        events->SendEvent(code);
    } catch (...) {
        // A lost event never fails a run.
    }
}

ICompanionObject* LoadFactoryExport(const char* library, const char* exportName) noexcept {
    return CallFactory<ICompanionObject>(FindExport(LoadLibraryA(library), exportName ? exportName : "GetImp"));
}
