#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

// Every import of the engine: how it refuses, or why nobody has it refuse.

struct Refusal {
    std::string_view functions;  // a blank before and behind each
    uintptr_t answer = 0;
    DWORD error = ERROR_ACCESS_DENIED;
    bool worksFirst = false;  // what closes has closed all the same
};
inline constexpr uintptr_t kFailed = 0x80004005, kDenied = ERROR_ACCESS_DENIED, kMinusOne = UINTPTR_MAX;
inline constexpr Refusal kRefusals[] = {
    {" AddAccessAllowedAceEx AddAce AdjustTokenPrivileges AllocateAndInitializeSid CreateWellKnownSid GetAce "
     "GetAclInformation GetFileSecurityW GetSecurityDescriptorDacl GetUserNameW InitializeAcl "
     "InitializeSecurityDescriptor IsValidSid LookupAccountNameW LookupPrivilegeValueW OpenProcessToken OpenSCManagerW "
     "OpenServiceW SetFileSecurityW SetSecurityDescriptorDacl CompareStringOrdinal DeleteFileW FindNextFileW "
     "GetEnvironmentVariableW GetFileSizeEx GetFullPathNameW GetModuleFileNameA GetModuleFileNameW LCMapStringEx "
     "LoadLibraryA MoveFileW MultiByteToWideChar OpenProcess ReadFile WideCharToMultiByte WriteFile "
     "WritePrivateProfileStringW CoTaskMemAlloc SHGetFileInfoW SHGetPathFromIDListW "
     "DeleteUrlCacheEntryW FindFirstUrlCacheEntryW FindNextUrlCacheEntryW InternetOpenUrlW InternetOpenW "
     "InternetQueryDataAvailable InternetQueryOptionW InternetReadFile "},
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

// Imports that cannot fail: identities, locks, kernel32's own handle, what only frees or computes or answers a default.
inline constexpr std::string_view kCannotFail =
    " GetLengthSid DeleteCriticalSection EnterCriticalSection GetCurrentProcess GetCurrentProcessId GetCurrentThread "
    "GetCurrentThreadId GetLastError GetPrivateProfileIntW InitializeCriticalSection InitializeCriticalSectionEx "
    "LeaveCriticalSection SetLastError "
    "CoTaskMemFree ILGetSize GetDesktopWindow GetModuleHandleW GetModuleHandleExW FreeSid DestroyIcon ";
// Of the crash filter, of a service that is installed and of taking ownership, which have tests that refuse them; and
// the deny entries that nobody adds.
inline constexpr std::string_view kElsewhere =
    " GetSystemDirectoryA LoadLibraryW SetUnhandledExceptionFilter StartServiceW AddAccessDeniedAce "
    "SetSecurityDescriptorOwner ";
// Called by the compiler's runtime only, the stack protector included.
inline constexpr std::string_view kRuntime =
    " AddVectoredExceptionHandler CreateEventA CreateSemaphoreA DuplicateHandle GetHandleInformation "
    "GetProcessAffinityMask GetSystemTimeAsFileTime GetThreadContext GetThreadPriority GetTickCount64 IsDBCSLeadByteEx "
    "IsDebuggerPresent OutputDebugStringA RaiseException ReleaseSemaphore RemoveVectoredExceptionHandler ResetEvent "
    "ResumeThread RtlCaptureContext RtlLookupFunctionEntry RtlUnwindEx RtlVirtualUnwind SetEvent "
    "SetProcessAffinityMask "
    "SetThreadContext SetThreadPriority Sleep SuspendThread TlsAlloc TlsGetValue TlsSetValue TryEnterCriticalSection "
    "VirtualProtect VirtualQuery WaitForMultipleObjects WaitForSingleObject __C_specific_handler "
    "CryptAcquireContextA CryptGenRandom CryptReleaseContext ";

// Their answers are kept for the life of a process.
inline constexpr const char* kCachedAnswers[] = {"GetProcAddress", "GetVersionExW"};
