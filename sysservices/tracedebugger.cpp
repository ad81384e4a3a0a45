#include <windows.h>

#include <cstdarg>
#include <cstdio>

#include "sysservices/trace.h"

void DregsweepTrace(const wchar_t* format, ...) noexcept {
    const DWORD lastError = GetLastError();
    wchar_t line[1024];
    va_list arguments;
    va_start(arguments, format);
    // _vsnwprintf leaves a full buffer without its terminator.
    const int length = _vsnwprintf(line, ARRAYSIZE(line) - 1, format, arguments);
    va_end(arguments);
    line[length < 0 ? static_cast<int>(ARRAYSIZE(line)) - 1 : length] = L'\0';
    OutputDebugStringW(line);
    OutputDebugStringW(L"\n");
    SetLastError(lastError);
}
