#include <gmock/gmock.h>

#include "host/columns.h"
#include "host/progressline.h"

using testing::StartsWith;

TEST(HostText, SizesAreReadableAndExact) {
    const struct {
        uint64_t bytes;
        const wchar_t* text;
    } rows[] = {
        {0, L"0 bytes"},
        {1, L"1 byte"},
        {1023, L"1023 bytes"},
        {1024, L"1.0 KB (1,024 bytes)"},
        {1024 * 1024 - 1, L"1023.9 KB (1,048,575 bytes)"},
        {1024 * 1024, L"1.0 MB (1,048,576 bytes)"},
        {123456789012, L"114.9 GB (123,456,789,012 bytes)"},
        {~0ULL, L"15.9 EB (18,446,744,073,709,551,615 bytes)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FullSize(row.bytes), row.text);
}

TEST(HostText, ColumnsFollowTheWidthOfLetters) {
    EXPECT_EQ(Columns(L"aé中e\u0301"), 5U);
    EXPECT_EQ(PadRight(L"中", 4), L"中  ");
    EXPECT_EQ(PadLeft(L"123", 2), L"123");
    EXPECT_EQ(Shorten(L"a中b", 2), L"a");
    EXPECT_EQ(Shorten(L"a😀b", 2), L"a");
    EXPECT_EQ(Shorten(L"a😀b", 3), L"a😀");
}

TEST(HostText, ProgressNeverGoesBack) {
    COutput nowhere(nullptr);
    CProgressLine line(nowhere, /*hidden=*/false);
    // The overlapping ranges of three nodes, and of nodes within them.
    const struct {
        unsigned reached;
        const wchar_t* shown;
    } rows[] = {{0, L"  0%"},  {33, L" 33%"},  {16, L" 33%"}, {66, L" 66%"},
                {33, L" 66%"}, {100, L"100%"}, {120, L"100%"}};
    for (const auto& row : rows) {
        line.Reach(row.reached);
        EXPECT_THAT(line.Text(80), StartsWith(row.shown));
    }
    line.Count(2048);
    line.Enter(L"Zwischenspeicher");
    EXPECT_EQ(line.Text(30), L"100%  1 item, 2.0 KB  Zwischen");
}
