#include "cleaners/emptyprocregistry.h"

#include <gtest/gtest.h>

#include "cleaners/garbageclearhistoryproc.h"
#include "tests/support/allocguard.h"

namespace {

CGarbageEmptyProc* NeverCreated() noexcept {
    ADD_FAILURE() << "a later entry of the same name was used";
    return nullptr;
}

// Static objects of another source file than the registry, as a further procedure's would be.
CEmptyProcEntry g_first(L"Twice", GarbageXProc::CreateClearHistoryProc);
CEmptyProcEntry g_second(L"Twice", NeverCreated);
CEmptyProcEntry g_without(L"Without", nullptr);
CEmptyProcEntry g_hidden(L"Without", NeverCreated);

TEST(EmptyProcRegistry, CreatesByExactNameFromTheFirstEntry) {
    const CString name = L"NT_ClearHistory";
    const auto one = EmptyProcRegistry::CreateByName(name);
    const auto other = EmptyProcRegistry::CreateByName(name);
    ASSERT_TRUE(dynamic_cast<GarbageXProc::CGarbageClearHistoryProc*>(one.get()));
    EXPECT_TRUE(other && other != one);
    EXPECT_TRUE(EmptyProcRegistry::CreateByName(L"Twice"));
    for (const wchar_t* unknown : {L"nt_clearhistory", L"NT_ClearHistory ", L"NT_Clear", L"", L"Without"})
        EXPECT_FALSE(EmptyProcRegistry::CreateByName(unknown)) << testing::PrintToString(unknown);

    alloc_guard::FailAfter(0);
    const auto withoutMemory = EmptyProcRegistry::CreateByName(name);
    alloc_guard::FailAfter(-1);
    EXPECT_FALSE(withoutMemory);
}

}  // namespace
