#include "host/console/cancel.h"

#include <windows.h>

#include <atomic>

#include "host/console/exitstatus.h"

namespace {

// Set by the system's own thread for control events.
std::atomic<bool> g_requested{false};

bool IsStop(DWORD event) noexcept {
    return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
}

BOOL WINAPI RequestOnStop(DWORD event) noexcept {
    return IsStop(event) && CCancel::Request() ? TRUE : FALSE;
}

BOOL WINAPI EndOnStop(DWORD event) noexcept {
    // Not ExitProcess, in which libraries may wait for a lock of a thread that is no more.
    if (IsStop(event)) TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ExitStatus::Stopped));
    return FALSE;
}

}  // namespace

CCancel::CCancel() noexcept {
    g_requested = false;
    // A parent may have had Ctrl-C ignored, which children inherit.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(RequestOnStop, TRUE);
}

CCancel::~CCancel() {
    SetConsoleCtrlHandler(RequestOnStop, FALSE);
}

bool CCancel::Requested() const noexcept {
    return g_requested;
}

bool CCancel::Request() noexcept {
    return !g_requested.exchange(true);
}

// The handler that was added last is asked first.
void EndOnCancel() noexcept {
    SetConsoleCtrlHandler(EndOnStop, TRUE);
}
