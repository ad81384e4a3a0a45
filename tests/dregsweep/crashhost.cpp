// crash_host PROBE: loads the probe and crashes.
#include <windows.h>

namespace {

LONG WINAPI OlderFilter(EXCEPTION_POINTERS*) {
    ExitProcess(42);
}

}  // namespace

int main(int argc, char** argv) {
    SetUnhandledExceptionFilter(OlderFilter);
    if (argc == 2 && LoadLibraryA(argv[1])) RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    return 3;
}
