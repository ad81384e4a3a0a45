#pragma once

#include <windows.h>

#include <utility>

// Owns one thing that the system hands out, a handle, key or block, and gives it back at the end of its scope, keeping
// the thread's last error: what failed before is still to be told. `Kind` says what is owned:
//
//     struct KeyKind {
//         using Value = HKEY;
//         static void GiveBack(HKEY key) noexcept { RegCloseKey(key); }
//     };
//
// Null is no thing; a Kind for which another value is none as well says so with IsNone(Value).
template <class Kind>
class COwner {
public:
    using Value = typename Kind::Value;

    constexpr COwner() noexcept = default;
    explicit COwner(Value adopted) noexcept : m_value(adopted) {}
    COwner(COwner&& other) noexcept : m_value(std::exchange(other.m_value, Value{})) {}
    COwner& operator=(COwner&& other) noexcept {
        const COwner old(std::exchange(m_value, std::exchange(other.m_value, Value{})));
        return *this;
    }
    ~COwner() {
        if (!*this) return;
        const DWORD lastError = GetLastError();
        Kind::GiveBack(m_value);
        SetLastError(lastError);
    }

    // Gives back what it holds and returns the place for an out argument, which it then owns.
    Value* Put() noexcept {
        *this = COwner();
        return &m_value;
    }
    Value get() const noexcept { return m_value; }
    explicit operator bool() const noexcept {
        if constexpr (requires { Kind::IsNone(m_value); }) {
            if (Kind::IsNone(m_value)) return false;
        }
        return m_value != Value{};
    }

private:
    Value m_value{};
};
