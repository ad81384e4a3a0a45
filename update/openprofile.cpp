#include "update/openprofile.h"

#include <cstdint>

#include "sysservices/trace.h"

namespace {

constexpr wchar_t kAgent[] = L"Microsoft Internet Explorer";

// Row 0 is opened asynchronous though no callback is ever installed: a row that then refuses to deliver is passed over.
// The access type and the flags of row 1 are placeholders that OpenThroughSystemProxy replaces.
constexpr OpenProfile kProfiles[kMaxOpenProfiles] = {
    {kAgent, INTERNET_OPEN_TYPE_PRECONFIG, false, nullptr, nullptr, INTERNET_FLAG_ASYNC},
    {kAgent, INTERNET_OPEN_TYPE_PRECONFIG, true, nullptr, nullptr, INTERNET_FLAG_ASYNC},
    {kAgent, INTERNET_OPEN_TYPE_DIRECT, false, nullptr, nullptr, 0},
    {nullptr, 0, false, nullptr, nullptr, 0},
};

CInetHandle OpenThroughSystemProxy(const OpenProfile& profile) noexcept {
    // The texts that the record points to follow it in the same buffer.
    alignas(INTERNET_PROXY_INFO) uint8_t buffer[1024] = {};
    DWORD length = sizeof buffer;
    if (!InternetQueryOptionW(nullptr, INTERNET_OPTION_PROXY, buffer, &length)) {
        DregsweepTrace(L"[InternetFileProc] InternetQueryOption fail,%d", GetLastError());
        return {};
    }
    const auto* proxy = reinterpret_cast<const INTERNET_PROXY_INFO*>(buffer);
    return CInetHandle(
        InternetOpenW(profile.agent, proxy->dwAccessType, proxy->lpszProxy, proxy->lpszProxyBypass, /*flags=*/0));
}

}  // namespace

std::span<const OpenProfile> OpenProfiles() noexcept {
    size_t count = 0;
    while (count < kMaxOpenProfiles && kProfiles[count].agent)
        ++count;
    return {kProfiles, count};
}

CInetHandle OpenRoot(const OpenProfile& profile) noexcept {
    if (profile.systemProxy) return OpenThroughSystemProxy(profile);
    return CInetHandle(
        InternetOpenW(profile.agent, profile.accessType, profile.proxy, profile.proxyBypass, profile.flags));
}
