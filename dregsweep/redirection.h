#pragma once

#include <cstdint>

// The file-system redirection that a 32-bit process meets on a 64-bit system. It is a property of the calling thread:
// switch it off and on again on the same thread. Where the system has no such functions, and in a 64-bit process,
// nothing happens and the answers are false.

// Switches redirection off. `saved` receives the old value for RevertRedirection, 0 when there is nothing to revert.
bool DisableRedirection(uint64_t& saved) noexcept;

// Puts back what DisableRedirection saved.
bool RevertRedirection(uint64_t saved) noexcept;

// Keeps redirection off on the current thread until the end of the scope.
class CRedirectionOff {
public:
    CRedirectionOff() noexcept { DisableRedirection(m_saved); }
    ~CRedirectionOff() {
        // An old value of 0 is not put back, whatever the call answered.
        if (m_saved != 0) RevertRedirection(m_saved);
    }
    CRedirectionOff(const CRedirectionOff&) = delete;
    CRedirectionOff& operator=(const CRedirectionOff&) = delete;

private:
    uint64_t m_saved = 0;
};
