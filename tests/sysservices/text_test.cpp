#include "sysservices/text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Text, SplitDropsEmptyPiecesAndKeepsBlanks) {
    EXPECT_THAT(Split(L"|.tmp||.log|", L"|"), ElementsAre(L".tmp", L".log"));
    EXPECT_THAT(Split(L" a | b", L"|"), ElementsAre(L" a ", L" b"));
    EXPECT_THAT(Split(L"|||", L"|"), IsEmpty());
    EXPECT_THAT(Split(L"", L"|"), IsEmpty());
}

TEST(Text, LowerCasesLettersOfEveryAlphabet) {
    EXPECT_EQ(ToLower(L"C:\\ÄÖ\\ЖУК_[1]"), L"c:\\äö\\жук_[1]");
    EXPECT_EQ(ToLower(L""), L"");
}

TEST(Text, ConvertsBetweenUtf8AndUtf16) {
    EXPECT_EQ(Utf8ToWide("\xE6\xB8\x85\xE7\x90\x86 \xF0\x9F\x97\x91"), L"清理 \U0001F5D1");
    EXPECT_EQ(WideToUtf8(L"清理 \U0001F5D1"), "\xE6\xB8\x85\xE7\x90\x86 \xF0\x9F\x97\x91");
    EXPECT_EQ(Utf8ToWide("a\xFF"
                         "b"),
              L"a\xFFFD"
              L"b");
    EXPECT_EQ(Utf8ToWide(static_cast<const char*>(nullptr)), L"");
}
