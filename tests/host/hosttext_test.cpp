#include <gmock/gmock.h>

#include "host/common/itemstate.h"
#include "host/common/printable.h"
#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/console/columns.h"
#include "host/console/progressline.h"

TEST(HostText, SizesAreReadableAndExact) {
    EXPECT_EQ(FullSize(1), L"1 byte");
    EXPECT_EQ(FullSize(1024), L"1.0 KB (1,024 bytes)");
    EXPECT_EQ(FullSize(1024 * 1024 - 1), L"1023.9 KB (1,048,575 bytes)");
    EXPECT_EQ(FullSize(~0ULL), L"15.9 EB (18,446,744,073,709,551,615 bytes)");
}

TEST(HostText, PlaceholdersTakeTheirValuesInTheFirstLanguageToo) {
    SetTextLanguage(MAKELANGID(LANG_WELSH, SUBLANG_NEUTRAL));
    EXPECT_EQ(Text(IDS_USAGE, {L"100%2 \n", L"%1"}), L"100%2 \n (%1 --help tells the usage)");
    EXPECT_EQ(Text(IDS_USAGE), L" ( --help tells the usage)");
    EXPECT_EQ(Text(IDS_TOTAL), L"Total");
}

TEST(HostText, ColumnsFollowTheWidthOfLetters) {
    EXPECT_EQ(Columns(L"aé中e\u0301"), 5U);
    EXPECT_EQ(PadRight(L"中", 4), L"中  ");
    EXPECT_EQ(PadLeft(L"123", 2), L"123");
    EXPECT_EQ(Shorten(L"a中b", 2), L"a");
    EXPECT_EQ(Shorten(L"a😀b", 2), L"a");
    EXPECT_EQ(Shorten(L"a😀b", 3), L"a😀");
    EXPECT_EQ(Printable(L"a\r\x1B\x9B\xA0"), L"a<U+000D><U+001B><U+009B>\xA0");
    EXPECT_EQ(Printable(L"\u200D\u200E\u202E\u202F\u2066\u206A"), L"\u200D<U+200E><U+202E>\u202F<U+2066>\u206A");
    EXPECT_EQ(PadRight(L"\x202E\x1B", 17), L"\x202E\x1B ");
}

TEST(HostText, ProgressNeverGoesBack) {
    COutput nowhere(nullptr);
    CProgressLine line(nowhere, /*hidden=*/false);
    // The overlapping ranges of three nodes, and of nodes within them.
    const std::pair<unsigned, const wchar_t*> rows[] = {{33, L"....]  33%"}, {16, L"....]  33%"}, {120, L"####] 100%"}};
    for (const auto& [reached, shown] : rows) {
        line.Reach(reached);
        EXPECT_THAT(line.Text(80), testing::HasSubstr(shown));
    }
    line.Count({2, 2048});
    line.Enter(L"Zwischenspeicher");
    EXPECT_EQ(line.Text(54), L"[####################] 100%  2 items, 2.0 KB  Zwischen");
}

TEST(HostText, ToldAsGoneOnlyWhenTheSystemKnows) {
    EXPECT_EQ(WhyNotDeleted(L"C:\\none"), ItemState::Gone);
    for (const std::wstring& path :
         std::vector<std::wstring>{L"none", L"C:\\none.", L"C:\\none ", std::wstring(260, L'\\')})
        EXPECT_EQ(WhyNotDeleted(path), ItemState::Refused);
}
