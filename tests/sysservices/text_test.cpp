#include "sysservices/text.h"

#include <gmock/gmock.h>

TEST(Text, SplitsLowersAndConverts) {
    EXPECT_THAT(Split(L"|.tmp|| .log|", L"|"), testing::ElementsAre(L".tmp", L" .log"));
    EXPECT_THAT(Split(L"||", L"|"), testing::IsEmpty());
    EXPECT_EQ(ToLower(L"C:\\ÄÖ\\ЖУК_[1]"), L"c:\\äö\\жук_[1]");
    EXPECT_EQ(Utf8ToWide("\xE6\xB8\x85 \xF0\x9F\x97\x91"), L"清 \U0001F5D1");
    EXPECT_EQ(WideToUtf8(L"清 \U0001F5D1"), "\xE6\xB8\x85 \xF0\x9F\x97\x91");
    EXPECT_EQ(Utf8ToWide("a\xFFz"), L"a\xFFFDz");
    EXPECT_EQ(Utf8ToWide(static_cast<const char*>(nullptr)), L"");
}
