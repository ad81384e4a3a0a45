#include "host/check/rulechecks.h"

#include <algorithm>

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

void CheckRegistryValues(const CheckedRule& rule, CFindings& findings) {
    if (!rule.Has("Value") || !rule.valueNames.empty()) return;
    findings.Add(FindingCodes::kAllValues, rule.PlaceOf("Value"), L"Value names nothing, so all values are deleted");
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

}  // namespace

void CheckDanger(const CheckedRule& rule, CFindings& findings) {
    if (rule.isRegistry) return CheckRegistryValues(rule, findings);
    if (rule.IsVirtual()) return;
    CheckRelative(rule, findings);
    if (!rule.hasLocation || !(rule.isFolder || rule.useShellBrowse)) return;
    CheckDriveRoot(rule, findings);
    CheckWholeFolder(rule, findings);
}
