#include "rules/excludepath.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace {

// The two ways to fold case do not agree about every letter: lower-cased, the Kelvin sign is a "k", which upper-cased
// is no Kelvin sign. Either will do, so that the entry always matches the folder that it was copied from.
bool EqualByEitherMapping(std::wstring_view text, std::wstring_view lower) {
    const int order = CompareStringOrdinal(text.data(), static_cast<int>(text.size()), lower.data(),
                                           static_cast<int>(lower.size()), TRUE);
    // Taken for different, a folder that is to be left out would be cleaned.
    if (order == 0) throw std::runtime_error("texts cannot be compared");
    return order == CSTR_EQUAL || ToLower(text) == lower;
}

bool Matches(const ExcludePathEntry& entry, std::wstring_view folderPath, std::wstring_view lowerName) {
    if (!entry.exactMatch) return lowerName.find(entry.path) != std::wstring_view::npos;
    if (folderPath.size() < entry.path.size()) return false;
    // The tail may begin inside a name: "emp" matches "C:\Temp".
    return EqualByEitherMapping(folderPath.substr(folderPath.size() - entry.path.size()), entry.path);
}

}  // namespace

const ExcludePathEntry* FindExcludePath(const std::list<ExcludePathEntry>& entries, std::wstring_view folderPath,
                                        std::wstring_view lowerName) {
    const auto match = std::find_if(entries.begin(), entries.end(), [&](const ExcludePathEntry& entry) {
        return Matches(entry, folderPath, lowerName);
    });
    return match == entries.end() ? nullptr : &*match;
}
