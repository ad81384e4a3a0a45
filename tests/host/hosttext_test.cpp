#include <gmock/gmock.h>

#include "host/common/itemstate.h"
#include "host/common/printable.h"
#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/console/columns.h"
#include "host/console/progressline.h"

TEST(HostText, SizesAreReadableAndExact) {
    EXPECT_EQ(FullSize(1), L"1 byte");
    EXPECT_EQ(FullSize(999), L"999 bytes");
    EXPECT_EQ(FullSize(1024), L"1.0 KB (1,024 bytes)");
    EXPECT_EQ(FullSize(1024 * 1024), L"1.0 MB (1,048,576 bytes)");
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
    EXPECT_EQ(Shorten(L"a\U00010000\U000103FF", 4), L"a\U00010000");
    EXPECT_EQ(Shorten(L"a\U00010000", 2), L"a");
    // The first and last characters of all ranges, and their neighbours outside.
    EXPECT_EQ(Columns(L"\u0300\u036F\u200B\u20D0\u20FF\uFE00\uFE0F"), 0U);
    EXPECT_EQ(Columns(L"\u02FF\u0370\u200A\u20CF\u2100\uFDFF\uFE10"), 7U);
    EXPECT_EQ(Columns(L"\u1100\u115F\u2E80\uA4CF\uAC00\uD7A3\uF900\uFAFF\uFE30\uFE6F\uFF00\uFF60\uFFE0\uFFE6"), 28U);
    EXPECT_EQ(Columns(L"\u10FF\u1160\u2E7F\uA4D0\uABFF\uD7A4\uF8FF\uFB00\uFE2F\uFE70\uFEFF\uFF61\uFFDF\uFFE7"), 14U);
    EXPECT_EQ(Columns(std::wstring_view(L"\x00\x1F\x7F\x9F\u200E\u200F\u202A\u202E\u2066\u2069", 10)), 80U);
    EXPECT_EQ(Columns(L"\x20\x7E\xA0\u2010\u2029\u202F\u2065\u206A"), 8U);
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
