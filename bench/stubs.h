#pragma once

#include <windows.h>

#include <initializer_list>
#include <list>

#include "tests/support/iatpatch.h"

// One imported function, and what is called in its place.
struct Stub {
    template <class F>
    Stub(const char* name, F* replacement) : function(name),
                                             address(reinterpret_cast<const void*>(replacement)) {}
    const char* function;
    const void* address;
};

// Replaces imports of a module until the end of the scope. Throws when it does not import one of them: then the
// platform would be measured, or files deleted.
class Stubs {
public:
    Stubs(HMODULE module, std::initializer_list<Stub> stubs);

private:
    std::list<IatPatch> m_patches;
};
