#include "bench/stubs.h"

#include "host/common/hosterror.h"

Stubs::Stubs(HMODULE module, std::initializer_list<Stub> stubs) {
    for (const Stub& stub : stubs) {
        if (!m_patches.emplace_back(module, nullptr, stub.function, stub.address).ok())
            throw CHostError(L"the engine does not import what the benchmark replaces");
    }
}
