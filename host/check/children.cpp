#include "host/check/rulechecks.h"

namespace {

std::wstring WhyIgnored(const CheckedRule& rule, const wchar_t* flag) {
    if (rule.ReadsChildren()) return std::wstring(L"the rule needs ") + flag + L"=\"1\"";
    if (rule.HasBase() || rule.isRegistry) return L"such a rule reads no children";
    return L"a rule without a base folder reads no children";
}

// What the author thinks is kept, or passed over, is not.
void CheckIgnored(const CheckedRule& rule, CFindings& findings) {
    const auto& exclusions = rule.children.exclusions;
    if (!exclusions.empty() && !(rule.excludePath && rule.ReadsChildren())) {
        findings.Add(FindingCodes::kIgnoredChildren, *exclusions.front().element,
                     L"this keeps nothing: " + WhyIgnored(rule, L"ExcludePath"));
    }
    // Of the flag itself it is said that a registry rule has no use for it.
    const bool isFlagged = rule.loopPath || (rule.isRegistry && rule.Sets("LoopPath"));
    const auto& steps = rule.children.steps;
    const auto& terminals = rule.children.terminals;
    if (isFlagged || (steps.empty() && terminals.empty())) return;
    findings.Add(FindingCodes::kIgnoredChildren, steps.empty() ? *terminals.front().element : *steps.front().element,
                 L"the whole location is searched instead: " + WhyIgnored(rule, L"LoopPath"));
}

void CheckLoop(const CheckedRule& rule, CFindings& findings) {
    if (!rule.loopPath || (rule.ReadsChildren() && !rule.children.steps.empty())) return;
    const std::wstring why = !rule.ReadsChildren() ? WhyIgnored(rule, L"LoopPath")
                             : rule.children.terminals.empty()
                                 ? L"there is no <LoopPath> with a Path"
                                 : L"terminal paths need a step, such as <LoopPath Path=\"*\"/>";
    findings.Add(FindingCodes::kLoopWithoutStep, rule.PlaceOf("LoopPath"), L"the loop finds nothing: " + why);
}

void CheckSteps(const CheckedRule& rule, CFindings& findings) {
    for (const auto& [step, element] : rule.children.steps) {
        const std::wstring& pattern = step.path;
        if (pattern.find_first_of(L"\\/") != std::wstring::npos)
            findings.Add(FindingCodes::kDoesNothing, *element,
                         L"a step is a name of one level: use AddPath, or more steps");
        else if (pattern.empty() || pattern.starts_with(L'.'))
            findings.Add(FindingCodes::kDoesNothing, *element,
                         L"no folder matches: loops pass over names that begin with a dot");
    }
}

void CheckExclusionFlag(const CheckedRule& rule, CFindings& findings) {
    if (!rule.excludePath) return;
    if (rule.children.exclusions.empty()) {
        findings.Add(FindingCodes::kExcludeWithoutChild, rule.PlaceOf("ExcludePath"),
                     L"nothing is kept: there is no <ExcludePath> with a Path");
    } else if (!rule.iteration) {
        findings.Add(FindingCodes::kNoEffect, rule.PlaceOf("ExcludePath"),
                     L"without Iteration no folder is entered, so none needs to be excluded");
    }
}

// Why no folder can match, or null.
const wchar_t* WhyKeepsNothing(const ExcludePathEntry& exclusion) {
    const std::wstring_view path = exclusion.path;
    if (path.find_first_of(L"*?\"<>|") != path.npos) return L"has a wildcard: give the folder's name as it is";
    if (path.find(L'/') != path.npos) return L"has a \"/\": separate folders by \"\\\"";
    if (path.ends_with(L'\\')) return L"ends with a separator: leave it out";
    // A part of one folder's name.
    if (!exclusion.exactMatch) return path.find(L'\\') == path.npos ? nullptr : L"has a \"\\\": use ExactMatch";
    if (path.ends_with(L' ')) return L"ends with a blank: leave it out";
    const std::wstring below = std::wstring(path) + L'\\';
    if (below.find(L"\\\\", 1) != path.npos || below.find(L".\\") != path.npos)
        return L"is compared letter by letter: write it without \".\" and doubled separators";
    return nullptr;
}

// The end of a folder's path is compared as the scan puts it together, with the location as it is written.
bool IsOddlyWritten(std::wstring_view location) {
    const std::wstring path = std::wstring(location) + L'\\';
    return path.find(L'/') != path.npos || path.find(L"\\\\", 1) != path.npos || path.find(L".\\") != path.npos
           || path.find(L" \\") != path.npos;
}

void CheckExclusions(const CheckedRule& rule, CFindings& findings) {
    for (const auto& [exclusion, element] : rule.children.exclusions) {
        const std::wstring& path = exclusion.path;
        if (path.empty()) continue;  // which the schema tells
        if (const wchar_t* const why = WhyKeepsNothing(exclusion)) {
            findings.Add(FindingCodes::kImpossibleExclusion, *element, L"this keeps nothing: it " + std::wstring(why));
        } else if (exclusion.exactMatch && path.find(L'\\', 1) != std::wstring::npos && IsOddlyWritten(rule.path)) {
            findings.Add(FindingCodes::kImpossibleExclusion, *element,
                         L"this may keep nothing: it is compared with the rule's Path as that is written; write \""
                             + rule.path + L"\" without \"/\", \".\" and separators at its end");
        } else if (exclusion.exactMatch && !path.starts_with(L'\\')) {
            findings.Add(FindingCodes::kLooseExclusion, *element,
                         L"this also matches the end of a longer name: begin it with \"\\\"");
        }
    }
}

}  // namespace

void CheckChildren(const CheckedRule& rule, CFindings& findings) {
    CheckIgnored(rule, findings);
    // Of other rules no flag has an effect, which is said elsewhere.
    if (rule.isRegistry || rule.IsVirtual() || rule.useShellBrowse || !rule.isFolder) return;
    CheckLoop(rule, findings);
    CheckSteps(rule, findings);
    CheckExclusionFlag(rule, findings);
    CheckExclusions(rule, findings);
}
