#include <windows.h>

namespace {

SERVICE_STATUS_HANDLE g_handle;
HANDLE g_stop;

void Report(DWORD state) {
    SERVICE_STATUS status = {};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = SERVICE_ACCEPT_STOP;
    SetServiceStatus(g_handle, &status);
}

void WINAPI Control(DWORD control) {
    if (control == SERVICE_CONTROL_STOP) SetEvent(g_stop);
}

void WINAPI Main(DWORD, wchar_t**) {
    g_handle = RegisterServiceCtrlHandlerW(L"zolkmsvc", Control);
    Report(SERVICE_RUNNING);
    WaitForSingleObject(g_stop, INFINITE);
    Report(SERVICE_STOPPED);
}

}  // namespace

int main() {
    g_stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    wchar_t name[] = L"zolkmsvc";
    const SERVICE_TABLE_ENTRYW table[] = {{name, Main}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherW(table) ? 0 : 1;
}
