#include "cleaners/emptyprocregistry.h"

#include <gtest/gtest.h>

#include "cleaners/garbageclearhistoryproc.h"

namespace {

// Static objects of another source file than the registry, as a further procedure's would be.
EmptyProcEntry g_without(L"Without", nullptr);
EmptyProcEntry g_hidden(L"Without", GarbageXProc::CreateClearHistoryProc);
EmptyProcEntry g_further(L"Further", GarbageXProc::CreateClearHistoryProc);

TEST(EmptyProcRegistry, CreatesByExactNameFromTheFirstEntry) {
    const auto proc = EmptyProcRegistry::CreateByName(L"NT_ClearHistory");
    EXPECT_TRUE(dynamic_cast<GarbageXProc::CGarbageClearHistoryProc*>(proc.get()));
    EXPECT_TRUE(EmptyProcRegistry::CreateByName(L"Further"));
    for (const wchar_t* unknown : {L"nt_clearhistory", L"NT_ClearHistory ", L"NT_Clear", L"", L"Without"})
        EXPECT_FALSE(EmptyProcRegistry::CreateByName(unknown)) << testing::PrintToString(unknown);
}

}  // namespace
