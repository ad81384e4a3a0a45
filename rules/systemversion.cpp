#include "rules/systemversion.h"

#include <atomic>

namespace {

bool QueryIsWow64() noexcept {
    using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, PBOOL);
    const auto isWow64Process = reinterpret_cast<IsWow64ProcessFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), "IsWow64Process")));
    BOOL isWow64 = FALSE;
    return isWow64Process && isWow64Process(GetCurrentProcess(), &isWow64) && isWow64;
}

}  // namespace

bool IsWow64() noexcept {
    static const bool isWow64 = QueryIsWow64();
    return isWow64;
}

DWORD GetBuildNumber() noexcept {
    static std::atomic<DWORD> build{0};
    static std::atomic<bool> known{false};
    if (known) return build;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (GetVersionExW(&version)) {
        build = version.dwBuildNumber;
        known = true;
    }
    return build;
}

bool IsXpOrOlder() noexcept {
    constexpr DWORD kFirstBuildAfterXp = 2601;
    return GetBuildNumber() < kFirstBuildAfterXp;
}
