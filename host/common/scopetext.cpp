#include "host/common/scopetext.h"

#include <algorithm>
#include <iterator>

#include "host/common/texts.h"

namespace {

constexpr uint32_t kWithPattern = 1U << 31;  // beside the GarbageScopeFlags

struct Row {
    uint32_t kind;
    uint32_t flags;
    unsigned text;
};

// Of each kind those that want more flags come first.
constexpr Row kRows[] = {
    {ScopeFolder, ScopeBelow | ScopeNotItself, IDS_FILES_ONLY_BELOW},
    {ScopeFolder, ScopeNotItself, IDS_FILES_NONE},
    {ScopeFolder, ScopeBelow, IDS_FILES_AND_BELOW},
    {ScopeFolder, 0, IDS_FILES_IN},
    {ScopeFile, 0, IDS_FILE},
    {ScopeShellItems, 0, IDS_SHELL_ITEMS},
    {ScopeShellFolder, 0, IDS_SHELL_FOLDER},
    {ScopeKey, ScopeDeletesKey, IDS_KEY},
    {ScopeKey, ScopeBelow | kWithPattern, IDS_VALUES_OF_PART},
    {ScopeKey, ScopeBelow, IDS_VALUES_OF_SUB_KEYS},
    {ScopeKey, 0, IDS_VALUES_OF},
    {ScopeValue, 0, IDS_ONLY_VALUE},
    {ScopeStep, kWithPattern, IDS_STEP_WITH_PART},
    {ScopeStep, 0, IDS_STEP},
    {ScopeEnd, ScopeExact, IDS_END_NAMED},
    {ScopeEnd, 0, IDS_END},
    {ScopeKeptFiles, 0, IDS_KEPT_FILES},
    {ScopeKeptFolder, ScopeExact | ScopeBelow, IDS_KEPT_END_AND_BELOW},
    {ScopeKeptFolder, ScopeExact, IDS_KEPT_END},
    {ScopeKeptFolder, ScopeBelow, IDS_KEPT_FOLDERS_AND_BELOW},
    {ScopeKeptFolder, 0, IDS_KEPT_FOLDERS},
};

}  // namespace

std::wstring ScopeText(const Scope& scope) {
    const uint32_t flags = scope.flags | (scope.pattern.empty() ? 0 : kWithPattern);
    const auto row = std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& candidate) {
        return candidate.kind == scope.kind && (flags & candidate.flags) == candidate.flags;
    });
    // A kind of a later engine.
    return row == std::end(kRows) ? scope.text : Text(row->text, {scope.text, scope.pattern});
}
