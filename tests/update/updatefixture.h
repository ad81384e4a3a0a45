#pragma once

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "sysservices/reference.h"
#include "sysservices/trace.h"
#include "tests/support/allocguard.h"
#include "tests/support/iatpatch.h"
#include "tests/support/loopbackhttp.h"
#include "tests/support/tempfolder.h"
#include "tests/support/tracerecorder.h"
#include "update/inethandle.h"
#include "update/internetfileproc.h"

// What the replaced platform functions and the sink do besides their work; the defaults disturb nothing but row 0.
struct Faults {
    // Which functions fail with 12031: "O" opening a root, "P" the proxy query, "A" the query for what is available,
    // "R" reading; and from which of these calls to which.
    const char* fails = "";
    int first = 1;
    int last = 1 << 30;
    // Lets row 0 open, whose requests reach the server at times of their own, and row 1 through a proxy that nobody is;
    // puts the calls that open and seek among the trace lines.
    bool allRows = false;
    bool zeroAvailable = false;  // nothing is available at first
    DWORD size = 0;              // told by InternetSetFilePointer; 0 for the announced length
    int sinkStops = 0;           // number of the sink's call that answers non-zero
    int sinkThrows = 0;          // number of the one that throws
    int calls = 0;               // of the functions in `fails` so far
};
inline Faults g_faults;
inline std::wstring g_executable;  // told by GetModuleFileNameW
inline int g_openHandles = 0;      // roots and requests that the code under test has open

inline bool Fails(char function) {
    if (!std::strchr(g_faults.fails, function)) return false;
    const int call = ++g_faults.calls;
    SetLastError(12031);
    return call >= g_faults.first && call <= g_faults.last;
}

inline HINTERNET Count(HINTERNET opened) {
    g_openHandles += opened != nullptr;
    return opened;
}

// The function itself: its name is its import slot, which leads to the replacement. Looked up before any test, which
// may have the look-up refuse.
template <class Function>
Function* Real(Function&, const char* name) {
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"wininet.dll"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}
inline const auto kOpenRoot = Real(InternetOpenW, "InternetOpenW");
inline const auto kOpenRequest = Real(InternetOpenUrlW, "InternetOpenUrlW");
inline const auto kCloseHandle = Real(InternetCloseHandle, "InternetCloseHandle");
inline const auto kQueryOption = Real(InternetQueryOptionW, "InternetQueryOptionW");
inline const auto kQueryAvailable = Real(InternetQueryDataAvailable, "InternetQueryDataAvailable");
inline const auto kRead = Real(InternetReadFile, "InternetReadFile");

// Stands in for a function that the platform of the tests lacks.
inline DWORD WINAPI TellSize(HINTERNET request, LONG, PVOID, DWORD method, DWORD_PTR) {
    if (g_faults.allRows) DregsweepTrace(L"InternetSetFilePointer %u", method);
    DWORD length = 0;
    DWORD size = sizeof length;
    const DWORD query = HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER;
    if (method == FILE_END && !HttpQueryInfoW(request, query, &length, &size, nullptr)) length = 0xFFFFFFFF;
    SetLastError(0);
    return g_faults.size && method == FILE_END ? g_faults.size : length;
}

inline HINTERNET WINAPI OpenRootHandle(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags) {
    if (g_faults.allRows) DregsweepTrace(L"InternetOpenW %s,%u,%s,%s,0x%x", agent, access, proxy, bypass, flags);
    if (Fails('O') || (flags == INTERNET_FLAG_ASYNC && !g_faults.allRows)) return nullptr;
    return Count(kOpenRoot(agent, access, proxy, bypass, flags));
}

inline HINTERNET WINAPI OpenRequest(HINTERNET root, LPCWSTR url, LPCWSTR head, DWORD size, DWORD flags, DWORD_PTR) {
    if (g_faults.allRows) DregsweepTrace(L"InternetOpenUrlW %s,%u,0x%x", head, size, flags);
    return Count(kOpenRequest(root, url, head, size, flags, 0));
}

inline BOOL WINAPI CloseInternetHandle(HINTERNET handle) {
    const BOOL closed = kCloseHandle(handle);
    g_openHandles -= closed;
    return closed;
}

inline BOOL WINAPI QueryOption(HINTERNET handle, DWORD option, LPVOID buffer, LPDWORD length) {
    if (Fails('P')) return FALSE;
    if (!g_faults.allRows) return kQueryOption(handle, option, buffer, length);
    *static_cast<INTERNET_PROXY_INFO*>(buffer) = {INTERNET_OPEN_TYPE_PROXY, L"127.0.0.1:9", L"nowhere"};
    return TRUE;
}

inline BOOL WINAPI QueryAvailable(HINTERNET request, LPDWORD available, DWORD flags, DWORD_PTR context) {
    const BOOL result = !Fails('A') && kQueryAvailable(request, available, flags, context);
    if (g_faults.zeroAvailable) *available = 0;
    return result;
}

inline BOOL WINAPI Read(HINTERNET request, LPVOID buffer, DWORD length, LPDWORD read) {
    return !Fails('R') && kRead(request, buffer, length, read);
}

inline DWORD WINAPI TellExecutable(HMODULE, LPWSTR buffer, DWORD size) {
    return static_cast<DWORD>(g_executable.copy(buffer, size));
}

// Real WinINet and a real server; the INI file lies in the temporary folder. Every internet handle must be closed.
class UpdateTest : public testing::Test {
protected:
    UpdateTest() {
        for (const IatPatch& patch : m_patches)
            EXPECT_TRUE(patch.ok());
        // For an executable T\xxx whose file name is one shorter than T, the INI file lies in T.
        g_executable = m_folder / std::wstring(m_folder.path().size() - 1, L'x');
    }
    ~UpdateTest() override {
        m_update = {};
        EXPECT_EQ(g_openHandles, 0) << "internet handles leaked";
        std::wstring().swap(g_executable);
        TakeTraceLines();
    }

    // The trace lines, each with "|" behind it, with "@" for the address and without their common beginning.
    static std::string Traced(const std::wstring& url = L"?") {
        std::wstring all;
        for (const std::wstring& line : TakeTraceLines())
            all += (line.starts_with(L"[InternetFileProc] ") ? line.substr(19) : L"!" + line) + L"|";
        for (size_t at = 0; (at = all.find(url, at)) != all.npos;)
            all.replace(at, url.size(), L"@");
        return WideToUtf8(all);
    }

    const std::wstring m_closed = L"http://127.0.0.1:9/";  // nobody listens there
    TempFolder m_folder;
    LoopbackHttp m_server;
    CReference<CInternetFileProc> m_update{new CInternetFileProc};

private:
    const IatPatch m_patches[8] = {{"InternetSetFilePointer", TellSize},
                                   {"InternetOpenW", OpenRootHandle},
                                   {"InternetOpenUrlW", OpenRequest},
                                   {"InternetCloseHandle", CloseInternetHandle},
                                   {"InternetQueryOptionW", QueryOption},
                                   {"InternetQueryDataAvailable", QueryAvailable},
                                   {"InternetReadFile", Read},
                                   {"GetModuleFileNameW", TellExecutable}};
};
