#include "rules/systemversion.h"

#include <gtest/gtest.h>

#include "tests/support/iatpatch.h"

namespace {

DWORD g_build = 0;  // 0: the query fails, having written a number

BOOL WINAPI TellBuild(OSVERSIONINFOW* version) {
    version->dwBuildNumber = g_build ? g_build : 9999;
    return version->dwOSVersionInfoSize == 276 && g_build != 0;
}

class SystemVersion : public testing::TestWithParam<std::pair<DWORD, bool>> {};

}  // namespace

// In a process of its own each.
TEST_P(SystemVersion, AnswerIsKeptUnlessTheQueryFailed) {
    const IatPatch patch(nullptr, nullptr, "GetVersionExW", reinterpret_cast<const void*>(&TellBuild));
    for (const DWORD build : {0ul, GetParam().first, 9000 - GetParam().first, 0ul}) {
        const bool first = build == 0 && g_build == 0;
        g_build = build;
        EXPECT_EQ(IsXpOrOlder(), first || GetParam().second) << build;
    }
}

INSTANTIATE_TEST_SUITE_P(Builds, SystemVersion, testing::Values(std::pair(2600, true), std::pair(2601, false)));
