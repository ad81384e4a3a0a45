#include "host/check/rulechecks.h"

#include <algorithm>
#include <vector>

#include "rules/rootkeyname.h"
#include "sysservices/text.h"

namespace {

using Names = std::vector<std::wstring>;

// In lower case, below any root. With "Wow6432Node" left out and "CurrentControlSet" for every set.
constexpr const wchar_t* kNeededKeys[] = {
    L"system\\currentcontrolset\\control",
    L"system\\currentcontrolset\\services",
    L"software\\microsoft\\windows\\currentversion\\run",
    L"software\\microsoft\\windows\\currentversion\\runonce",
    L"software\\microsoft\\windows nt\\currentversion\\winlogon",
};

// What is below them may be a program's own.
constexpr const wchar_t* kSharedKeys[] = {
    L"software",
    L"software\\classes",
    L"software\\classes\\clsid",
    L"software\\microsoft",
    L"software\\microsoft\\windows",
    L"software\\microsoft\\windows\\currentversion",
    L"software\\microsoft\\windows nt",
    L"software\\microsoft\\windows nt\\currentversion",
    L"software\\policies",
    L"system",
    L"system\\currentcontrolset",
    L"control panel",
    L"environment",
};

constexpr const wchar_t* kAnyName = L"*";

bool IsControlSet(const std::wstring& name) {
    return name.starts_with(L"controlset") && name.find_first_not_of(L"0123456789", 10) == std::wstring::npos;
}

// The names on the way to the keys that lose something, kAnyName for those that an iteration gives.
Names TargetOf(const CheckedRule& rule) {
    Names names = Split(ToLower(rule.path), L"\\");
    if (rule.iteration && !rule.deleteKey) {
        names.emplace_back(kAnyName);
        for (std::wstring& name : Split(ToLower(rule.filter), L"\\"))
            names.push_back(std::move(name));
    }
    // HKEY_USERS: what is below a user's own identifier.
    if (rule.rootKey == HKEY_USERS && !names.empty()) names.erase(names.begin());
    std::erase(names, L"wow6432node");
    std::replace_if(names.begin(), names.end(), IsControlSet, L"currentcontrolset");
    return names;
}

bool BeginsWith(const Names& target, const Names& key) {
    return target.size() >= key.size() && std::equal(key.begin(), key.end(), target.begin(), [](auto& a, auto& b) {
               return a == b || b == kAnyName;
           });
}

bool IsNeeded(const Names& target) {
    return std::any_of(std::begin(kNeededKeys), std::end(kNeededKeys),
                       [&](const wchar_t* key) { return BeginsWith(target, Split(key, L"\\")); });
}

bool IsShared(const Names& target) {
    return target.empty() || std::any_of(std::begin(kSharedKeys), std::end(kSharedKeys), [&](const wchar_t* key) {
               const Names names = Split(key, L"\\");
               return names.size() == target.size() && BeginsWith(target, names);
           });
}

void CheckNeeded(const CheckedRule& rule, CFindings& findings) {
    const Names target = TargetOf(rule);
    const bool takesAll = rule.deleteKey || rule.valueNames.empty();
    const std::wstring key = KeyText(rule.rootKey, rule.path);
    if (takesAll && (IsNeeded(target) || IsShared(target))) {
        findings.Add(FindingCodes::kSystemKey, rule.element,
                     L"this takes what Windows or other programs need from " + key
                         + L": name the key of one program, or single values");
    } else if (IsNeeded(target)) {
        findings.Add(FindingCodes::kSystemValue, rule.element,
                     L"Windows starts and runs by what is in " + key + L": be sure that nobody needs these values");
    }
    if (!rule.deleteKey && rule.Has("Value") && rule.valueNames.empty())
        findings.Add(FindingCodes::kAllValues, rule.PlaceOf("Value"),
                     L"Value names nothing, so all values are deleted");
}

bool BeginsWithRoot(std::wstring_view path) {
    const std::wstring first = ToLower(path.substr(0, path.find(L'\\')));
    return first.starts_with(L"hkey_") || RootKeyByName(WideToUtf8(path.substr(0, 4)).c_str());
}

void CheckKeyPath(const CheckedRule& rule, CFindings& findings) {
    const wchar_t* const why =
        rule.path.starts_with(L'\\') || rule.path.ends_with(L'\\') ? L"begins or ends with a separator: leave it out"
        : BeginsWithRoot(rule.path)                                ? L"begins with a root: name that in RootKey alone"
        : rule.path.find(L'/') != std::wstring::npos
            ? L"has a \"/\", which is a letter of a name here: separate keys by \"\\\""
        : rule.path.find(L'*') != std::wstring::npos ? L"has a \"*\", which is a letter of a name here: use Iteration"
                                                     : nullptr;
    if (!why) return;
    findings.Add(FindingCodes::kImpossibleKey, rule.PlaceOf("KeyPath"), L"the key \"" + rule.path + L"\" " + why);
}

void CheckValueNames(const CheckedRule& rule, CFindings& findings) {
    for (const std::wstring& name : rule.valueNames) {
        if (name.find_first_of(L"*?") == std::wstring::npos) continue;
        findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("Value"),
                     L"\"" + name + L"\" is a name without wildcards: name each value, or leave Value out for all");
    }
}

}  // namespace

void CheckRegistry(const CheckedRule& rule, CFindings& findings) {
    if (!rule.isRegistry || !rule.rootKey || rule.path.empty()) return;
    CheckNeeded(rule, findings);
    CheckKeyPath(rule, findings);
    CheckValueNames(rule, findings);
}
