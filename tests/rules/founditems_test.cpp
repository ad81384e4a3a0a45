#include "rules/founditems.h"

#include <gmock/gmock.h>
#include <objbase.h>

#include <vector>

namespace {

// Texts of every length around those of the blocks, and more than one block of each size.
CString TextOf(size_t n) {
    return std::to_wstring(n) + CString(n % 500 == 0 ? 30'000 : n % 300, L'y');
}

// Every third path has a literal form, every seventh an item-ID list.
void Append(CFoundItems& items, size_t n) {
    CFoundPath path(L"C:\\." + CString(n % 3 == 0 ? L"\\." : L""));
    path.AppendReturned(TextOf(n));
    if (n % 3 == 0) path.AppendReturned(L"x.");
    items.Append(path, n, CItemIdList(n % 7 == 0 ? static_cast<LPITEMIDLIST>(CoTaskMemAlloc(2)) : nullptr));
}

std::vector<size_t> Numbers(CFoundItems& items) {
    std::vector<size_t> numbers;
    for (const CFoundItems::FoundItem& item : items) {
        const CString text = TextOf(item.size), literal = L"\\\\?\\C:\\" + text + L"\\x.";
        EXPECT_EQ(item.Path(), item.size % 3 == 0 ? L"C:\\.\\.\\" + text + L"\\x." : L"C:\\.\\" + text);
        EXPECT_EQ(item.LiteralPath(), item.size % 3 == 0 ? literal : CString()) << item.size;
        numbers.push_back(item.size);
    }
    return numbers;
}

}  // namespace

TEST(FoundItems, KeepOrderAndTextWhateverIsErasedBetween) {
    CFoundItems items;
    std::vector<size_t> left;
    for (size_t n = 0; n < 2'000; left.push_back(n++))
        Append(items, n);
    EXPECT_EQ(Numbers(items), left);
    // In one walk, as a clean does it.
    for (const size_t divisor : {3U, 2U, 1U}) {
        const auto goes = [=](size_t n) { return n % divisor == 0 || (n > 500 && n < 1'000); };
        for (auto item = items.begin(); item != items.end();)
            item = goes(item->size) ? items.Erase(item) : ++item;
        std::erase_if(left, goes);
        EXPECT_EQ(Numbers(items), left) << divisor;
        EXPECT_EQ(items.Count(), left.size());
    }
    Append(items, 5);
    EXPECT_THAT(Numbers(items), testing::ElementsAre(5));
    items.Clear();
    EXPECT_EQ(items.begin(), items.end());
}
