#include "rules/containment.h"

#include <algorithm>

bool ContainmentLess::operator()(std::wstring_view a, std::wstring_view b) const noexcept {
    const bool aIsLonger = a.size() > b.size();
    const std::wstring_view longer = aIsLonger ? a : b;
    const std::wstring_view shorter = aIsLonger ? b : a;
    if (longer.find(shorter) != std::wstring_view::npos) return false;
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](wchar_t x, wchar_t y) { return FoldAscii(x) < FoldAscii(y); });
}
