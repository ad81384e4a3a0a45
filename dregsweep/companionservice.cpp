#include "dregsweep/companionservice.h"

#include <windows.h>

#include "sysservices/owner.h"

namespace {

constexpr wchar_t kServiceName[] = L"zolkmsvc";

struct ServiceKind {
    using Value = SC_HANDLE;
    static void GiveBack(SC_HANDLE handle) noexcept { CloseServiceHandle(handle); }
};
using CServiceHandle = COwner<ServiceKind>;

}  // namespace

bool StartCompanionService() noexcept {
    const CServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager) return false;
    const CServiceHandle service(OpenServiceW(manager.get(), kServiceName, SERVICE_ALL_ACCESS));
    if (!service) return false;
    if (StartServiceW(service.get(), 0, nullptr)) return true;
    return GetLastError() == ERROR_SERVICE_ALREADY_RUNNING;
}
