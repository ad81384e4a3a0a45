#include "host/check/rulechecks.h"

#include "sysservices/xmlattribute.h"

namespace {

std::wstring WhyIgnored(const CheckedRule& rule, const wchar_t* flag) {
    if (rule.ReadsChildren()) return std::wstring(L"the rule needs ") + flag + L"=\"1\"";
    if (rule.HasBase() || rule.isRegistry) return L"such a rule reads no children";
    return L"a rule without a base folder reads no children";
}

// What the author thinks is kept, or passed over, is not.
void CheckIgnored(const CheckedRule& rule, CFindings& findings) {
    if (!rule.exclusions.empty() && !(rule.excludePath && rule.ReadsChildren())) {
        findings.Add(FindingCodes::kIgnoredChildren, *rule.exclusions.front(),
                     L"this keeps nothing: " + WhyIgnored(rule, L"ExcludePath"));
    }
    const bool hasLoop = !rule.steps.empty() || !rule.terminals.empty();
    if (hasLoop && !rule.loopPath) {
        const TiXmlElement* first = rule.steps.empty() ? rule.terminals.front() : rule.steps.front();
        findings.Add(FindingCodes::kIgnoredChildren, *first,
                     L"the whole location is searched instead: " + WhyIgnored(rule, L"LoopPath"));
    }
}

void CheckLoop(const CheckedRule& rule, CFindings& findings) {
    if (!rule.loopPath || (rule.ReadsChildren() && !rule.steps.empty())) return;
    const std::wstring why = !rule.ReadsChildren()    ? WhyIgnored(rule, L"LoopPath")
                             : rule.terminals.empty() ? L"there is no <LoopPath> with a Path"
                                                      : L"terminal paths need a step, such as <LoopPath Path=\"*\"/>";
    findings.Add(FindingCodes::kLoopWithoutStep, rule.PlaceOf("LoopPath"), L"the loop finds nothing: " + why);
}

void CheckSteps(const CheckedRule& rule, CFindings& findings) {
    for (const TiXmlElement* step : rule.steps) {
        const std::wstring pattern = AttributeText(*step, "Path");
        if (pattern.find_first_of(L"\\/") != std::wstring::npos)
            findings.Add(FindingCodes::kDoesNothing, *step,
                         L"a step is a name of one level: use AddPath, or more steps");
        else if (pattern.empty() || pattern.starts_with(L'.'))
            findings.Add(FindingCodes::kDoesNothing, *step,
                         L"no folder matches: loops pass over names that begin with a dot");
    }
}

void CheckExclusionFlag(const CheckedRule& rule, CFindings& findings) {
    if (!rule.excludePath) return;
    if (rule.exclusions.empty()) {
        findings.Add(FindingCodes::kExcludeWithoutChild, rule.PlaceOf("ExcludePath"),
                     L"nothing is kept: there is no <ExcludePath> with a Path");
    } else if (!rule.iteration) {
        findings.Add(FindingCodes::kNoEffect, rule.PlaceOf("ExcludePath"),
                     L"without Iteration no folder is entered, so none needs to be excluded");
    }
}

void CheckExclusions(const CheckedRule& rule, CFindings& findings) {
    for (const TiXmlElement* exclusion : rule.exclusions) {
        const std::wstring path = AttributeText(*exclusion, "Path");
        const bool exactMatch = ReadInteger(*exclusion, "ExactMatch", 0) == 1;
        if (!exactMatch && path.find_first_of(L"\\/") != std::wstring::npos) {
            findings.Add(FindingCodes::kNoEffect, *exclusion,
                         L"without ExactMatch this is compared with the name of one folder, which has no such letter");
        } else if (exactMatch && !path.starts_with(L'\\')) {
            findings.Add(FindingCodes::kLooseExclusion, *exclusion,
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
