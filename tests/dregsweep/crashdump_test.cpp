#include "dregsweep/crashdump.h"

#include <gtest/gtest.h>

#include "sysservices/handle.h"
#include "tests/dregsweep/builtfiles.h"

namespace {

// The exit code of `commandLine`; 0xFFFFFFFF when it does not start or end.
DWORD ExitCodeOf(std::wstring commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
        return MAXDWORD;
    const CHandle process(started.hProcess);
    const CHandle thread(started.hThread);
    DWORD exitCode = MAXDWORD;
    if (WaitForSingleObject(process.get(), 60000) == WAIT_OBJECT_0) GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

void SetCrashDebugger(const std::wstring& command) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\AeDebug", L"Debugger",
                    REG_SZ, command.c_str(), static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
}

TEST(CrashDump, StandsBesideTheExecutableOfTheProcess) {
    const TempFolder library;
    const std::wstring probe = CopyBuilt(L"environment_probe.dll", library, L"probe.dll");
    // What the system does with an exception that the filter leaves to it.
    SetCrashDebugger(L"cmd /c mkdir \"" + library / L"debugged" + L"\"");
    for (const bool nameTaken : {false, true}) {
        const TempFolder host;
        const std::wstring executable = CopyBuilt(L"crash_host.exe", host, L"host.exe");
        if (nameTaken) host.MakeFolder(L"dsw.dmp");
        EXPECT_EQ(ExitCodeOf(L"\"" + executable + L"\" \"" + probe + L"\""), EXCEPTION_ACCESS_VIOLATION);
        EXPECT_EQ(library.Has(L"debugged"), nameTaken);
        EXPECT_TRUE(nameTaken || ReadFileBytes(host / L"dsw.dmp").starts_with("MDMP"));
    }
    SetCrashDebugger(L"winedbg --auto %ld %ld");
    EXPECT_FALSE(library.Has(L"dsw.dmp"));
}

LONG WINAPI ForeignFilter(EXCEPTION_POINTERS*) {
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(CrashDump, UnloadTakesBackOnlyItsOwnFilter) {
    for (const LPTOP_LEVEL_EXCEPTION_FILTER laterFilter : {LPTOP_LEVEL_EXCEPTION_FILTER{}, &ForeignFilter}) {
        const HMODULE probe = LoadLibraryW(BuiltFile(L"environment_probe.dll").c_str());
        const auto installed = SetUnhandledExceptionFilter(laterFilter);
        EXPECT_TRUE(installed && installed != &ForeignFilter);
        if (!laterFilter) SetUnhandledExceptionFilter(installed);
        ASSERT_TRUE(FreeLibrary(probe));
        EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), laterFilter);
    }
}

}  // namespace
