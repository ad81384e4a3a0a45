#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

// How the imports of the engine refuse, when 0 and "access denied" is not how.
struct Refusal {
    std::string_view functions;  // a blank before and behind each
    uintptr_t answer = 0;
    DWORD error = ERROR_ACCESS_DENIED;
    bool worksFirst = false;  // what closes has closed all the same
};
inline constexpr uintptr_t kFailed = 0x80004005, kDenied = ERROR_ACCESS_DENIED, kMinusOne = UINTPTR_MAX;
inline constexpr Refusal kRefusals[] = {
    {" RegDeleteKeyW RegDeleteValueW RegEnumKeyExW RegEnumKeyW RegEnumValueW RegOpenKeyExW RegQueryValueExW ", kDenied},
    {" CreateFileW FindFirstFileW ", kMinusOne},
    {" CoInitialize SHEmptyRecycleBinW SHGetDesktopFolder SHGetFolderPathW SHGetSpecialFolderLocation "
     "SHQueryRecycleBinW ",
     kFailed},
    {" CoCreateInstance ", 0x80040154},
    {" InternetSetFilePointer ", 0xFFFFFFFF},
    {" CloseServiceHandle CloseHandle FindClose FindCloseUrlCache InternetCloseHandle ", 0, ERROR_INVALID_HANDLE, true},
    {" RegCloseKey ", kMinusOne, ERROR_INVALID_HANDLE, true},
};

// The imports that are left alone: what cannot fail (identities, locks, kernel32's own handle, what only frees or
// computes or answers a default); what has tests that refuse it (the crash filter, a service that is installed, taking
// ownership); the deny entries that nobody adds; and what only the compiler's runtime calls.
inline constexpr std::string_view kLeftAlone =
    " GetLengthSid DeleteCriticalSection EnterCriticalSection GetCurrentProcess GetCurrentProcessId GetCurrentThread "
    "GetCurrentThreadId GetLastError GetPrivateProfileIntW InitializeCriticalSection InitializeCriticalSectionEx "
    "LeaveCriticalSection SetLastError CoTaskMemFree ILGetSize GetDesktopWindow GetModuleHandleW GetModuleHandleExW "
    "FreeSid DestroyIcon "
    "GetSystemDirectoryA LoadLibraryW SetUnhandledExceptionFilter StartServiceW SetSecurityDescriptorOwner "
    "AddAccessDeniedAce "
    "AddVectoredExceptionHandler CreateEventA CreateSemaphoreA DuplicateHandle GetHandleInformation "
    "GetProcessAffinityMask GetSystemTimeAsFileTime GetThreadContext GetThreadPriority GetTickCount64 IsDBCSLeadByteEx "
    "IsDebuggerPresent OutputDebugStringA RaiseException ReleaseSemaphore RemoveVectoredExceptionHandler ResetEvent "
    "ResumeThread RtlCaptureContext RtlLookupFunctionEntry RtlUnwindEx RtlVirtualUnwind SetEvent "
    "SetProcessAffinityMask SetThreadContext SetThreadPriority Sleep SuspendThread TlsAlloc TlsGetValue TlsSetValue "
    "TryEnterCriticalSection VirtualProtect VirtualQuery WaitForMultipleObjects WaitForSingleObject "
    "__C_specific_handler CryptAcquireContextA CryptGenRandom CryptReleaseContext "
    // Refused first of all and in a process of its own.
    "GetProcAddress GetVersionExW ";
