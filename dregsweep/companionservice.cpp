#include "dregsweep/companionservice.h"

#include <windows.h>

#include <memory>
#include <type_traits>

namespace {

constexpr wchar_t kServiceName[] = L"zolkmsvc";

struct ServiceCloser {
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
using ServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

}  // namespace

bool StartCompanionService() noexcept {
    const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager) return false;
    const ServiceHandle service(OpenServiceW(manager.get(), kServiceName, SERVICE_ALL_ACCESS));
    if (!service) return false;
    if (StartServiceW(service.get(), 0, nullptr)) return true;
    // A service that runs already counts as started, on purpose.
    return GetLastError() == ERROR_SERVICE_ALREADY_RUNNING;
}
