#include "tests/support/tracerecorder.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "sysservices/lock.h"
#include "sysservices/trace.h"

namespace {

CLock g_lock;
std::vector<std::wstring> g_lines;  // guarded by g_lock

}  // namespace

void DregsweepTrace(const wchar_t* format, ...) noexcept {
    const DWORD lastError = GetLastError();
    wchar_t line[2048] = {};
    va_list arguments;
    va_start(arguments, format);
    _vsnwprintf(line, ARRAYSIZE(line) - 1, format, arguments);
    va_end(arguments);
    try {
        const CLockGuard guard(g_lock);
        g_lines.emplace_back(line);
    } catch (...) {
        // A test in which allocations fail loses the line, as the product would.
    }
    SetLastError(lastError);
}

std::vector<std::wstring> TakeTraceLines() {
    const CLockGuard guard(g_lock);
    return std::exchange(g_lines, {});
}
