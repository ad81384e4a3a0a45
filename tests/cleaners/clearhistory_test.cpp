#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

#include "cleaners/garbageclearhistoryproc.h"
#include "tests/support/iatpatch.h"

namespace {

int g_creations, g_closed, g_stuck;
bool g_refuse;
const IatPatch* g_create;
const IatPatch* g_close;

HRESULT WINAPI CountCreate(REFCLSID classId, IUnknown* outer, DWORD context, REFIID id, void** object) {
    ++g_creations;
    *object = nullptr;
    if (g_refuse) return REGDB_E_CLASSNOTREG;
    return g_create->original<decltype(&CoCreateInstance)>()(classId, outer, context, id, object);
}

BOOL WINAPI CountClose(HANDLE walk) {
    ++g_closed;
    return g_close->original<decltype(&FindCloseUrlCache)>()(walk);
}

// Refuses the buffer without asking for a larger one.
BOOL WINAPI NextStuck(HANDLE, INTERNET_CACHE_ENTRY_INFOW*, DWORD* size) {
    ++g_stuck;
    *size = 4096;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
}

void Add(const wchar_t* url, DWORD type, DWORD headerChars) {
    wchar_t file[MAX_PATH] = {};
    std::wstring header(headerChars, L'h');
    ASSERT_TRUE(CreateUrlCacheEntryW(url, 0, L"htm", file, 0));
    ASSERT_TRUE(CommitUrlCacheEntryW(url, type == NORMAL_CACHE_ENTRY ? file : nullptr, {}, {}, type, header.data(),
                                     headerChars, nullptr, nullptr));
}

bool Has(const wchar_t* url) {
    DWORD size = 0;
    return GetUrlCacheEntryInfoW(url, nullptr, &size) || GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

// The prefix's own service refuses ClearHistory; to have reached it is enough.
TEST(ClearHistory, DeletesOrdinaryEntriesInFivePasses) {
    const IatPatch create("CoCreateInstance", CountCreate), close("FindCloseUrlCache", CountClose);
    ASSERT_TRUE(create.ok() && close.ok());
    g_create = &create;
    g_close = &close;
    // These two also keep a walk from finding an empty cache, which it would have nothing to close for.
    constexpr const wchar_t *kCookie = L"Cookie:user@cleaner.test/", *kVisited = L"Visited: user@http://cleaner.test/";
    Add(kCookie, COOKIE_CACHE_ENTRY, 10);
    Add(kVisited, URLHISTORY_CACHE_ENTRY, 10);
    const wchar_t* const urls[] = {L"http://cleaner.test/1", L"http://cleaner.test/2", L"http://cleaner.test/large"};
    GarbageXProc::CGarbageClearHistoryProc proc;
    for (const bool refuse : {true, false}) {
        g_refuse = refuse;
        g_creations = g_closed = 0;
        for (const wchar_t* url : urls)
            Add(url, NORMAL_CACHE_ENTRY, url == urls[2] ? 20000 : 10);  // the last takes 40 KB
        EXPECT_EQ(proc.Run(1, 2, 3), !refuse);
        EXPECT_TRUE(g_creations == 5 && g_closed == 5) << g_creations << " " << g_closed;
        for (const wchar_t* url : urls)
            EXPECT_FALSE(Has(url)) << testing::PrintToString(url);
        EXPECT_TRUE(Has(kCookie) && Has(kVisited));
    }
    const IatPatch next("FindNextUrlCacheEntryW", NextStuck);
    EXPECT_TRUE(proc.Run(0, 0, 0));
    EXPECT_EQ(g_stuck, 5) << "a walk that cannot go on ends";
}

}  // namespace
