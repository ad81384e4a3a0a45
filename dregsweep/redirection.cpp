#include "dregsweep/redirection.h"

#include <windows.h>

#include <atomic>

namespace {

using DisableFunction = BOOL(WINAPI*)(void** saved);
using RevertFunction = BOOL(WINAPI*)(void* saved);

// A function of kernel32 that not every system has, looked up on first use. All ones means not looked up yet, so that
// null can mean looked up and missing, which is kept as well. Two threads may both look up: they store the same value.
template <class Function>
class CKernelFunction {
public:
    constexpr explicit CKernelFunction(const char* name) noexcept : m_name(name) {}

    Function Get() noexcept {
        uintptr_t address = m_address.load(std::memory_order_relaxed);
        if (address == kNotLookedUp) {
            address = reinterpret_cast<uintptr_t>(GetProcAddress(GetModuleHandleW(L"kernel32"), m_name));
            m_address.store(address, std::memory_order_relaxed);
        }
        return reinterpret_cast<Function>(address);
    }

private:
    static constexpr uintptr_t kNotLookedUp = ~uintptr_t{0};

    const char* m_name;
    std::atomic<uintptr_t> m_address{kNotLookedUp};
};

constinit CKernelFunction<DisableFunction> g_disable("Wow64DisableWow64FsRedirection");
constinit CKernelFunction<RevertFunction> g_revert("Wow64RevertWow64FsRedirection");

}  // namespace

bool DisableRedirection(uint64_t& saved) noexcept {
    // 0 also without the function, and where the system leaves the value alone.
    saved = 0;
    const DisableFunction disable = g_disable.Get();
    if (!disable) return false;
    void* old = nullptr;
    const bool disabled = disable(&old);
    saved = reinterpret_cast<uint64_t>(old);
    return disabled;
}

bool RevertRedirection(uint64_t saved) noexcept {
    const RevertFunction revert = g_revert.Get();
    return revert && revert(reinterpret_cast<void*>(saved));
}
