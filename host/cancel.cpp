#include "host/cancel.h"

#include <windows.h>

#include <atomic>

namespace {

// Set by the system's own thread for control events.
std::atomic<bool> g_requested{false};

BOOL WINAPI OnControlEvent(DWORD event) noexcept {
    const bool stop = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    return stop && CCancel::Request() ? TRUE : FALSE;
}

}  // namespace

CCancel::CCancel() noexcept {
    g_requested = false;
    // A parent may have had Ctrl-C ignored, which children inherit.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

CCancel::~CCancel() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
}

bool CCancel::Requested() const noexcept {
    return g_requested;
}

bool CCancel::Request() noexcept {
    return !g_requested.exchange(true);
}
