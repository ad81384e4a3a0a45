#include "host/check/rulechecks.h"

#include <algorithm>
#include <set>
#include <span>
#include <string_view>

#include "sysservices/text.h"

namespace {

constexpr std::string_view kBaseAttributes[] = {"FolderEnvDir", "FolderX86EnvDir", "FolderIndex", "Path"};

// The attributes in any order, the selection aside; case matters to none of them that says what is found.
std::wstring Attributes(const TiXmlElement& element, std::span<const std::string_view> leftOut) {
    std::set<std::wstring> parts;
    for (const TiXmlAttribute* at = element.FirstAttribute(); at; at = at->Next()) {
        const bool isLeftOut = std::find(leftOut.begin(), leftOut.end(), at->Name()) != leftOut.end();
        if (isLeftOut || at->Name() == std::string_view("SelState")) continue;
        parts.insert(ToLower(Utf8ToWide(at->Name()) + L'=' + Utf8ToWide(at->Value())));
    }
    std::wstring text;
    for (const std::wstring& part : parts)
        text += part + L'\n';
    return text;
}

// What the rule does: equal for rules that do the same, also when they say the location in different ways.
std::wstring Signature(const CheckedRule& rule) {
    const bool byLocation = rule.HasBase() && rule.hasLocation && !rule.getByReg;
    std::wstring text =
        byLocation ? rule.location + L'\n' + Attributes(rule.element, kBaseAttributes) : Attributes(rule.element, {});
    for (const TiXmlElement* child = rule.element.FirstChildElement(); child; child = child->NextSiblingElement())
        text += ToLower(Utf8ToWide(child->Value())) + L'\n' + Attributes(*child, {});
    return text;
}

}  // namespace

void CDuplicateCheck::Add(const CheckedRule& rule, bool isForXp, CFindings& findings) {
    const std::wstring signature = (isForXp ? L"xp\n" : L"") + Signature(rule);
    const auto [first, isNew] = m_lines.try_emplace(signature, rule.element.Row());
    if (isNew) return;
    findings.Add(FindingCodes::kDuplicateRule, rule.element,
                 L"this rule does the same as that of line " + std::to_wstring(first->second));
}
