// environment_child: runs as the companion service. environment_child LIBRARY: loads the library and crashes.
#include <windows.h>

namespace {

SERVICE_STATUS_HANDLE g_handle;
wchar_t g_name[] = L"zolkmsvc";

void WINAPI Report(DWORD control) {
    const DWORD state = control == SERVICE_CONTROL_STOP ? SERVICE_STOPPED : SERVICE_RUNNING;
    SERVICE_STATUS status = {SERVICE_WIN32_OWN_PROCESS, state, SERVICE_ACCEPT_STOP, 0, 0, 0, 0};
    SetServiceStatus(g_handle, &status);
}

void WINAPI Main(DWORD, wchar_t**) {
    g_handle = RegisterServiceCtrlHandlerW(g_name, Report);
    Report(0);
}

LONG WINAPI OlderFilter(EXCEPTION_POINTERS*) {
    ExitProcess(42);
}

}  // namespace

int main(int argc, char** argv) {
    SetUnhandledExceptionFilter(OlderFilter);
    if (argc == 2 && LoadLibraryA(argv[1])) RaiseException(0xE0445357, 0, 0, nullptr);
    const SERVICE_TABLE_ENTRYW table[] = {{g_name, Main}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherW(table) ? 0 : 1;
}
