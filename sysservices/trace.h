#pragma once

// The one way out for diagnostic lines: a wide printf-style format in the platform's meaning (%s wide, %S narrow) and
// its arguments. The delivered DLL links trace.cpp, which discards every line; a diagnostic build links
// tracedebugger.cpp, and the tests link a recorder. Keeps the thread's last error. Any thread.
void DregsweepTrace(const wchar_t* format, ...) noexcept;
