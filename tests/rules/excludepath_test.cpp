#include "rules/excludepath.h"

#include <gtest/gtest.h>

// Letters such as the Kelvin sign fold to another one in lower case than in upper case.
TEST(ExcludePath, MatchesTheFolderThatItWasCopiedFromWhateverItsLetters) {
    for (wchar_t letter = L' '; letter < 0xFFFF; ++letter) {
        const CString name = CString(L"x") + letter;
        for (const bool exactMatch : {false, true}) {
            const std::list<ExcludePathEntry> entries = {{.path = ToLower(name), .exactMatch = exactMatch}};
            ASSERT_TRUE(FindExcludePath(entries, L"C:\\" + name, ToLower(name))) << std::hex << int{letter};
        }
    }
    const std::list<ExcludePathEntry> entries = {{.path = L"\\ä", .exactMatch = true}};
    EXPECT_TRUE(FindExcludePath(entries, L"C:\\Ä", L"ä") && !FindExcludePath(entries, L"C:\\A", L"a"));
}
