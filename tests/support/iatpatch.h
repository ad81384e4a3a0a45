#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

// Replaces one imported function of one loaded module until the end of the scope, so that tests can produce what the
// platform at hand cannot. Install it outside the call under test: the compiler may keep an import slot in a register
// across a loop. A replacement calls original<F>(), never the function by its name, which would be itself.
class IatPatch {
public:
    // An import of the test executable from any DLL.
    template <class F>
    IatPatch(const char* function, F* replacement)
        : IatPatch(nullptr, nullptr, function, reinterpret_cast<const void*>(replacement)) {}
    // `module` null means the test executable; `dll` null means an import from any DLL.
    IatPatch(HMODULE module, const char* dll, const char* function, const void* replacement);
    ~IatPatch();
    IatPatch(const IatPatch&) = delete;
    IatPatch& operator=(const IatPatch&) = delete;

    // False when the module does not import the function: assert it.
    bool ok() const { return !m_slots.empty(); }
    template <class F>
    F original() const {
        return m_slots.empty() ? nullptr : reinterpret_cast<F>(m_slots.front().old);
    }

private:
    struct Slot {
        ULONGLONG* at;
        ULONGLONG old;
    };
    static void Write(ULONGLONG* at, ULONGLONG value);
    std::vector<Slot> m_slots;
};

// What a module imports by name: the library and the function of each.
std::vector<std::pair<std::string, std::string>> ImportsOf(HMODULE module);
