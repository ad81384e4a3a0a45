#pragma once

#include <windows.h>

// The crash filter of the process: an exception that nobody handles leaves a small dump, "dsw.dmp", in the folder of
// the process's executable (not of this library), replacing an older one.

// Answers EXCEPTION_EXECUTE_HANDLER when the dump was written, which ends the process without the system's error
// report, else EXCEPTION_CONTINUE_SEARCH. Uses no heap and never throws: the process is broken when it runs.
LONG WINAPI CrashFilter(EXCEPTION_POINTERS* exception) noexcept;

// Makes CrashFilter the filter of the whole process.
void InstallCrashFilter() noexcept;

// Gives the process back the system's handling, unless somebody has put another filter in our place. Call it when the
// host unloads the library (DLL_PROCESS_DETACH with a null third argument), since the filter would then point into
// code that is gone; at the end of the process it stays, for what may still fail there.
void RemoveCrashFilter() noexcept;

// Installs the filter as a static object of the DLL. It has no destructor: a destructor cannot tell an unload from the
// end of the process, DllMain can.
struct CrashFilterInstaller {
    CrashFilterInstaller() noexcept { InstallCrashFilter(); }
};
