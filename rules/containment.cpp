#include "rules/containment.h"

#include <algorithm>

namespace {

bool IsOneInTheOther(std::wstring_view a, std::wstring_view b) noexcept {
    return a.size() > b.size() ? a.find(b) != std::wstring_view::npos : b.find(a) != std::wstring_view::npos;
}

}  // namespace

// The letters first: mostly the first one decides, and costs nothing beside a search.
bool ContainmentLess::operator()(std::wstring_view a, std::wstring_view b) const noexcept {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](wchar_t x, wchar_t y) { return FoldAscii(x) < FoldAscii(y); })
           && !IsOneInTheOther(a, b);
}
