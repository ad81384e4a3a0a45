#include "host/check/rulechecks.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "sysservices/text.h"

namespace {

// The loop, if there is one, gives every folder below the location.
bool GoesEverywhere(const CheckedRule& rule) {
    if (!rule.loopPath || rule.useShellBrowse) return true;
    const auto& steps = rule.children.steps;
    return rule.ReadsChildren() && !steps.empty() && std::all_of(steps.begin(), steps.end(), [](const auto& step) {
               return CheckedRule::MatchesAll(step.child.path) && NormalPath(step.child.addPath).empty();
           });
}

void CheckRelative(const CheckedRule& rule, CFindings& findings) {
    if (rule.HasBase() || rule.getByReg || rule.path.empty() || IsAbsolutePath(rule.path)) return;
    findings.Add(FindingCodes::kRelativeLocation, rule.PlaceOf("Path"),
                 L"\"" + rule.path + L"\" is relative to the current folder, whatever that is: give a base folder");
}

// Nothing is said of one folder of a program below the root of a drive, whatever the pattern.
void CheckDriveRoot(const CheckedRule& rule, CFindings& findings) {
    const bool isWide = rule.iteration || rule.MatchesAllNames() || !rule.children.terminals.empty();
    if (!rule.location.empty() || !isWide || !GoesEverywhere(rule)) return;
    findings.Add(FindingCodes::kDriveRoot, rule.element, L"this searches a whole drive: name a folder");
}

// The location as the author gave it.
std::wstring Spelled(const CheckedRule& rule) {
    std::wstring base = rule.folderIndex != -1 ? L"folder " + std::to_wstring(rule.folderIndex)
                        : rule.HasBase()       ? L'%' + rule.folderVariable + L'%'
                                               : std::wstring();
    // The engine takes the base folder when the registry has nothing, so that is what has to be harmless.
    if (rule.getByReg) return base + L", when the registry names none,";
    if (!base.empty() && !rule.path.empty()) base += L'\\';
    return base + rule.path;
}

void CheckWholeFolder(const CheckedRule& rule, CFindings& findings) {
    const bool takesAll = rule.useShellBrowse || (rule.MatchesAllNames() && rule.children.terminals.empty());
    if (!takesAll || rule.location.empty() || !GoesEverywhere(rule)) return;
    if (IsPreciousFolder(rule.location)) {
        findings.Add(
            FindingCodes::kWholeFolder, rule.element,
            L"this takes all of " + Spelled(rule) + L" with what must stay: name a folder in it, or a pattern");
    } else if (IsProgramFolder(rule.location)) {
        findings.Add(FindingCodes::kProgramFolder, rule.element,
                     L"this takes all of " + Spelled(rule) + L" and the program with it: give a pattern");
    }
}

// Only what is named "*.tmp" and the like is junk wherever it lies.
constexpr std::wstring_view kJunkEndings[] = {L"tmp", L"temp", L"bak", L"old", L"log", L"dmp", L"mdmp", L"chk", L"gid"};
constexpr std::wstring_view kProgramEndings[] = {L"exe", L"dll", L"sys", L"drv", L"ocx",
                                                 L"cpl", L"msi", L"mui", L"scr"};

template <size_t N>
bool HasEnding(std::wstring_view pattern, const std::wstring_view (&endings)[N]) {
    const std::wstring ending = ToLower(pattern.substr(pattern.rfind(L'.') + 1));
    return std::find(std::begin(endings), std::end(endings), ending) != std::end(endings);
}

void CheckPattern(const CheckedRule& rule, CFindings& findings) {
    if (rule.useShellBrowse || rule.MatchesAllNames() || !GoesEverywhere(rule)) return;
    if (HasEnding(rule.filter, kProgramEndings) && IsFolderOfPrograms(rule.location)) {
        findings.Add(FindingCodes::kProgramFiles, rule.PlaceOf("Filter"),
                     L"these are programs and libraries of " + Spelled(rule) + L": what they belong to will not run");
    } else if (IsPersonalFolder(rule.location) && !HasEnding(rule.filter, kJunkEndings)
               && !rule.filter.starts_with(L'~')) {
        findings.Add(FindingCodes::kPersonalFiles, rule.PlaceOf("Filter"),
                     L"these are a person's own files in " + Spelled(rule) + L": name a folder of a program");
    }
}

}  // namespace

void CheckDanger(const CheckedRule& rule, CFindings& findings) {
    if (rule.isRegistry || rule.IsVirtual()) return;
    CheckRelative(rule, findings);
    if (!rule.hasLocation || !(rule.isFolder || rule.useShellBrowse)) return;
    CheckDriveRoot(rule, findings);
    CheckWholeFolder(rule, findings);
    CheckPattern(rule, findings);
}
