#include "rules/systemversion.h"

#include <gtest/gtest.h>

#include "tests/support/iatpatch.h"

namespace {

DWORD g_build = 0;  // 0: the query fails, having written a number

BOOL WINAPI TellBuild(OSVERSIONINFOW* version) {
    version->dwBuildNumber = g_build ? g_build : 9999;
    return version->dwOSVersionInfoSize == 276 && g_build != 0;
}

void ExpectOld(std::initializer_list<std::pair<DWORD, bool>> queries) {
    const IatPatch patch(nullptr, nullptr, "GetVersionExW", reinterpret_cast<const void*>(&TellBuild));
    ASSERT_TRUE(patch.ok());
    for (const auto& [build, old] : queries) {
        g_build = build;
        EXPECT_EQ(IsXpOrOlder(), old) << build;
    }
}

}  // namespace

// The first answer is kept for the life of the process, and each test has a process of its own.
TEST(SystemVersion, FailedQueryIsAskedAgain) {
    ExpectOld({{0, true}, {2601, false}, {0, false}, {2600, false}});
}

TEST(SystemVersion, AnswerIsKept) {
    ExpectOld({{2600, true}, {2601, true}});
    EXPECT_FALSE(IsWow64());
}
