#include "tests/update/updatefixture.h"

#include "tests/support/tracerecorder.h"
#include "update/inethandle.h"

Faults g_faults;

namespace {

// The function itself, not its import slot, which leads to the replacement.
template <class Function>
Function* Real(Function&, const char* name) {
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"wininet.dll"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}
#define REAL(function) Real(function, #function)

BOOL Refuse(DWORD error) {
    SetLastError(error);
    return FALSE;
}

// Stands in for a function that the platform of the tests lacks.
DWORD WINAPI TellSize(HINTERNET request, LONG, PVOID, DWORD method, DWORD_PTR) {
    DWORD length = 0;
    DWORD size = sizeof length;
    const DWORD query = HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER;
    if (method == FILE_END && !HttpQueryInfoW(request, query, &length, &size, nullptr)) {
        SetLastError(ERROR_INTERNET_INVALID_OPERATION);
        return 0xFFFFFFFF;
    }
    SetLastError(0);
    return g_faults.size && method == FILE_END ? g_faults.size : length;
}

HINTERNET WINAPI OpenRootHandle(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags) {
    if (g_faults.noRoots || (flags == INTERNET_FLAG_ASYNC && !g_faults.asyncRow)) return Refuse(7), nullptr;
    return REAL(InternetOpenW)(agent, access, proxy, bypass, flags);
}

BOOL WINAPI QueryOption(HINTERNET handle, DWORD option, LPVOID buffer, LPDWORD length) {
    if (g_faults.noProxy) return Refuse(8);
    return REAL(InternetQueryOptionW)(handle, option, buffer, length);
}

BOOL WINAPI QueryAvailable(HINTERNET request, LPDWORD available, DWORD flags, DWORD_PTR context) {
    if (g_faults.noAvailable) return Refuse(12031);
    const BOOL result = REAL(InternetQueryDataAvailable)(request, available, flags, context);
    if (g_faults.zeroAvailable) *available = 0;
    return result;
}

BOOL WINAPI Read(HINTERNET request, LPVOID buffer, DWORD length, LPDWORD read) {
    const int number = ++g_faults.reads;
    const bool fails = g_faults.firstFailingRead && number >= g_faults.firstFailingRead;
    if (fails && number <= g_faults.lastFailingRead) return Refuse(12031);
    return REAL(InternetReadFile)(request, buffer, length, read);
}

DWORD WINAPI TellExecutable(HMODULE, LPWSTR buffer, DWORD size) {
    return static_cast<DWORD>(g_faults.executable.copy(buffer, size));
}

template <class Function>
IatPatch Patch(const char* dll, const char* name, Function* replacement) {
    return {nullptr, dll, name, reinterpret_cast<const void*>(replacement)};
}

}  // namespace

// For an executable T\xxx whose file name is one shorter than T, the INI file lies in T.
UpdateTest::UpdateTest()
    : m_executable(m_folder / std::wstring(m_folder.path().size() - 1, L'x')),
      m_patches{Patch("wininet.dll", "InternetSetFilePointer", TellSize),
                Patch("wininet.dll", "InternetOpenW", OpenRootHandle),
                Patch("wininet.dll", "InternetQueryOptionW", QueryOption),
                Patch("wininet.dll", "InternetQueryDataAvailable", QueryAvailable),
                Patch("wininet.dll", "InternetReadFile", Read),
                Patch("kernel32.dll", "GetModuleFileNameW", TellExecutable)} {
    for (const IatPatch& patch : m_patches)
        EXPECT_TRUE(patch.ok());
    g_faults = {};
    g_faults.executable = m_executable;
    TakeTraceLines();
}

UpdateTest::~UpdateTest() {
    m_update = {};
    TakeTraceLines();
}

void RecordingSink::Note(char call) {
    m_calls += call;
    if (call == m_throwsIn) throw call;
}

void RecordingSink::OnBegin(uint32_t totalSize) {
    m_announced = totalSize;
    m_bytes.clear();
    Note('B');
}

uint32_t RecordingSink::OnData(const uint8_t* buffer, uint32_t length) {
    m_bytes.append(buffer, buffer + length);
    Note('D');
    return m_refuses;
}
