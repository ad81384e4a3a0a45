#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

#include <string>

#include "cleaners/garbageclearhistoryproc.h"
#include "tests/support/allocguard.h"
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

void Add(const std::wstring& url, DWORD type, DWORD headerChars = 10) {
    wchar_t file[MAX_PATH] = {};
    std::wstring header(headerChars, L'h');
    ASSERT_TRUE(CreateUrlCacheEntryW(url.c_str(), 0, L"htm", file, 0));
    ASSERT_TRUE(CommitUrlCacheEntryW(url.c_str(), type == NORMAL_CACHE_ENTRY ? file : nullptr, {}, {}, type,
                                     header.data(), headerChars, nullptr, nullptr));
}

bool Has(const wchar_t* url) {
    DWORD size = 0;
    return GetUrlCacheEntryInfoW(url, nullptr, &size) || GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

class ClearHistory : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_create.ok() && m_close.ok());
        g_create = &m_create;
        g_close = &m_close;
        for (int i = 0; i < 12; ++i)
            Add(L"http://cleaner.test/" + std::to_wstring(i), NORMAL_CACHE_ENTRY);
        Add(L"http://cleaner.test/large", NORMAL_CACHE_ENTRY, 20000);  // 40 KB
        // These two also keep a walk from finding an empty cache, which it would have nothing to close for.
        Add(L"Cookie:user@cleaner.test/", COOKIE_CACHE_ENTRY);
        Add(L"Visited: user@http://cleaner.test/", URLHISTORY_CACHE_ENTRY);
    }

    GarbageXProc::CGarbageClearHistoryProc m_proc;
    IatPatch m_create{nullptr, nullptr, "CoCreateInstance", reinterpret_cast<void*>(CountCreate)};
    IatPatch m_close{nullptr, nullptr, "FindCloseUrlCache", reinterpret_cast<void*>(CountClose)};
};

// The prefix's own service refuses ClearHistory; to have reached it is enough.
TEST_P(ClearHistory, DeletesOrdinaryEntriesInFivePasses) {
    g_refuse = GetParam();
    ASSERT_TRUE(Has(L"http://cleaner.test/large"));
    EXPECT_EQ(m_proc.Run(1, 2, 3), !g_refuse);
    EXPECT_EQ(g_creations, 5);
    EXPECT_EQ(g_closed, 5);
    for (const wchar_t* url : {L"http://cleaner.test/0", L"http://cleaner.test/11", L"http://cleaner.test/large"})
        EXPECT_FALSE(Has(url)) << testing::PrintToString(url);
    EXPECT_TRUE(Has(L"Cookie:user@cleaner.test/"));
    EXPECT_TRUE(Has(L"Visited: user@http://cleaner.test/"));
}
INSTANTIATE_TEST_SUITE_P(WithAndWithoutService, ClearHistory, testing::Bool());

TEST_F(ClearHistory, WalkThatCannotGoOnEnds) {
    const IatPatch next(nullptr, nullptr, "FindNextUrlCacheEntryW", reinterpret_cast<void*>(NextStuck));
    ASSERT_TRUE(next.ok());
    EXPECT_TRUE(m_proc.Run(0, 0, 0));
    EXPECT_EQ(g_stuck, 5);
    alloc_guard::FailAfter(0);
    const bool reached = m_proc.Run(0, 0, 0);
    alloc_guard::FailAfter(-1);
    EXPECT_TRUE(reached);
    EXPECT_EQ(g_closed, 5);
}

}  // namespace
