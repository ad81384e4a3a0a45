#include "host/check/nearest.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "sysservices/text.h"

namespace {

// Letters inserted, deleted or replaced on the way from one text to the other. What is longer than any name of the
// format is cut.
size_t EditDistance(std::wstring_view from, std::wstring_view to) {
    constexpr size_t kLongest = 63;
    to = to.substr(0, kLongest);
    std::array<size_t, kLongest + 1> row;
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i + 1);
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[to.size()];
}

}  // namespace

std::wstring NearestHint(std::wstring_view name, const std::vector<std::wstring>& known) {
    const std::wstring lower = ToLower(name);
    const std::wstring* nearest = nullptr;
    // Farther away it is another word, unless it begins like that.
    constexpr size_t kBeginning = 4;
    size_t limit = name.size() / 3 + 2;
    for (const std::wstring& candidate : known) {
        const std::wstring other = ToLower(candidate);
        const bool begins = name.size() >= kBeginning && other.starts_with(lower);
        const size_t distance = begins ? 1 : EditDistance(lower, other);
        if (distance >= limit) continue;
        limit = distance;
        nearest = &candidate;
    }
    return nearest ? L", did you mean \"" + *nearest + L"\"?" : std::wstring();
}
