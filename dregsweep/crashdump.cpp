#include "dregsweep/crashdump.h"

#include <cstdint>
#include <cwchar>

#include "sysservices/handle.h"

namespace {

constexpr DWORD kPathChars = 520;
constexpr wchar_t kDumpName[] = L"\\dsw.dmp";
constexpr char kDumpLibrary[] = "DbgHelp.dll";
constexpr int kMiniDumpNormal = 0;

// The cross compiler's headers lack these declarations of DbgHelp, which packs its structures to four bytes.
#pragma pack(push, 4)
struct MiniDumpException {
    DWORD threadId;
    EXCEPTION_POINTERS* pointers;
    BOOL clientPointers;
};
#pragma pack(pop)
static_assert(sizeof(MiniDumpException) == 16);

using MiniDumpWriter = BOOL(WINAPI*)(HANDLE process, DWORD processId, HANDLE file, int type,
                                     const MiniDumpException* exception, const void* userStreams, const void* callback);

// Appends `text` to the text in `buffer`; false, and nothing appended, when it does not fit.
template <class Char, size_t N, size_t M>
bool Append(Char (&buffer)[N], const Char (&text)[M]) noexcept {
    size_t length = 0;
    while (length < N && buffer[length])
        ++length;
    if (length + M > N) return false;
    for (size_t i = 0; i < M; ++i)
        buffer[length + i] = text[i];
    return true;
}

// The executable's folder with its trailing backslash; empty when the path cannot be had.
void FindHostFolder(wchar_t (&folder)[kPathChars]) noexcept {
    if (GetModuleFileNameW(nullptr, folder, kPathChars) == 0) folder[0] = L'\0';
    folder[kPathChars - 1] = L'\0';
    if (wchar_t* last = std::wcsrchr(folder, L'\\')) last[1] = L'\0';
}

MiniDumpWriter FindDumpWriter() noexcept {
    char library[MAX_PATH] = {};
    // No system folder fits into four characters, so the buffer stays empty and the library is loaded by its bare name
    // through the ordinary search.
    GetSystemDirectoryA(library, 4);
    if (!Append(library, kDumpLibrary)) return nullptr;
    const HMODULE module = LoadLibraryA(library);  // stays loaded: the process is ending
    if (!module) return nullptr;
    return reinterpret_cast<MiniDumpWriter>(reinterpret_cast<void*>(GetProcAddress(module, "MiniDumpWriteDump")));
}

}  // namespace

LONG WINAPI CrashFilter(EXCEPTION_POINTERS* exception) noexcept {
    wchar_t path[kPathChars] = {};
    FindHostFolder(path);
    const MiniDumpWriter writeDump = FindDumpWriter();
    if (!writeDump) return EXCEPTION_CONTINUE_SEARCH;
    // Two backslashes before the name: with no folder it still begins at a root.
    if (!Append(path, kDumpName)) return EXCEPTION_CONTINUE_SEARCH;

    // Not shared for reading: nobody reads a dump that is not whole.
    const CHandle file(
        CreateFileW(path, GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return EXCEPTION_CONTINUE_SEARCH;
    const MiniDumpException information = {GetCurrentThreadId(), exception, FALSE};
    const BOOL written = writeDump(GetCurrentProcess(), GetCurrentProcessId(), file.get(), kMiniDumpNormal,
                                   &information, nullptr, nullptr);
    return written ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}

void InstallCrashFilter() noexcept {
    // The filter that was there is not called any more: a crash reporter that the host installed before hears nothing.
    SetUnhandledExceptionFilter(CrashFilter);
}

void RemoveCrashFilter() noexcept {
    // The system offers no query: take out whatever is there, and put it back if it is not ours.
    const LPTOP_LEVEL_EXCEPTION_FILTER current = SetUnhandledExceptionFilter(nullptr);
    if (current != CrashFilter) SetUnhandledExceptionFilter(current);
}
