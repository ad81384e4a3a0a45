#include "rules/founditems.h"

#include <gmock/gmock.h>
#include <objbase.h>

#include <vector>

namespace {

// Texts of every length around those of the blocks, and more than one block of each size.
CString TextOf(size_t n) {
    return std::to_wstring(n) + CString(n % 500 == 0 ? 30'000 : n % 300, L'y');
}

// Every third path has a literal form.
CFoundPath PathOf(size_t n) {
    CFoundPath path(L"C:\\." + CString(n % 3 == 0 ? L"\\." : L""));
    path.AppendReturned(TextOf(n));
    if (n % 3 == 0) path.AppendReturned(L"x.");
    return path;
}

std::vector<size_t> Numbers(CFoundItems& items) {
    std::vector<size_t> numbers;
    for (const CFoundItems::FoundItem& item : items) {
        const CString text = PathOf(item.size).Text(), literal = L"\\\\?\\C:\\" + TextOf(item.size) + L"\\x.";
        EXPECT_EQ(item.Path(), text) << item.size;
        EXPECT_EQ(item.LiteralPath(), item.size % 3 == 0 ? literal : CString()) << item.size;
        numbers.push_back(item.size);
    }
    return numbers;
}

// Erases what `goes` says, in one walk as a clean does it; returns what must be left.
template <class Goes>
std::vector<size_t> EraseIf(CFoundItems& items, const std::vector<size_t>& numbers, Goes goes) {
    for (auto item = items.begin(); item != items.end();)
        item = goes(item->size) ? items.Erase(item) : ++item;
    std::vector<size_t> left = numbers;
    std::erase_if(left, goes);
    return left;
}

}  // namespace

TEST(FoundItems, KeepOrderAndTextWhateverIsErasedBetween) {
    CFoundItems items;
    EXPECT_TRUE(Numbers(items).empty());
    std::vector<size_t> left;
    for (size_t n = 0; n < 2'000; ++n) {
        items.Append(PathOf(n), n,
                     n % 7 == 0 ? CItemIdList(static_cast<LPITEMIDLIST>(CoTaskMemAlloc(2))) : CItemIdList());
        left.push_back(n);
    }
    EXPECT_EQ(Numbers(items), left);
    for (const size_t divisor : {3U, 2U, 1U}) {
        left = EraseIf(items, left, [=](size_t n) { return n % divisor == 0 || (n > 500 && n < 1'000); });
        EXPECT_EQ(Numbers(items), left) << divisor;
        EXPECT_EQ(items.Count(), left.size());
    }
    items.Append(PathOf(5), 5, {});
    EXPECT_THAT(Numbers(items), testing::ElementsAre(5));
    items.Clear();
    EXPECT_EQ(items.begin(), items.end());
}
