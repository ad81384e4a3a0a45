#include "host/check/textentries.h"

#include <cstring>

#include "host/check/nearest.h"
#include "host/check/schema.h"
#include "sysservices/text.h"

namespace {

constexpr const char* kTable = "Dregsweep";

using FirstUses = std::map<std::string, const TiXmlElement*>;

void CollectKeys(const TiXmlElement& element, FirstUses& keys) {
    if (const char* key = element.Attribute("ResID")) keys.try_emplace(key, &element);
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
        CollectKeys(*child, keys);
}

void CheckTextSchema(const TiXmlElement& root, CFindings& findings) {
    if (std::strcmp(root.Value(), "Texts") != 0)
        findings.Add(FindingCodes::kNameForm, root, L"the usual name of the root is Texts");
    const TiXmlElement* table = root.FirstChildElement(kTable);
    if (!table) findings.Add(FindingCodes::kNoTable, root, L"there is no <Dregsweep>, so no name is translated");
    for (const TiXmlElement* child = root.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (table && child != table)
            findings.Add(FindingCodes::kUnknownElement, *child, L"beside the first <Dregsweep> nothing is read");
        for (const TiXmlAttribute* at = child->FirstAttribute(); at; at = at->Next())
            findings.Add(FindingCodes::kUnknownAttribute, *at, L"no attribute is read here");
    }
    for (const TiXmlAttribute* at = root.FirstAttribute(); at; at = at->Next()) {
        if (!IsSchemaReference(*at)) findings.Add(FindingCodes::kUnknownAttribute, *at, L"no attribute is read here");
    }
    if (table && !table->FirstChildElement() && table->FirstChild())
        findings.Add(FindingCodes::kStrayText, *table, L"there are no entries, and text between them is ignored");
}

}  // namespace

CTextEntries::CTextEntries(const TiXmlElement& root, CFindings& findings) {
    CheckTextSchema(root, findings);
    const TiXmlElement* table = root.FirstChildElement(kTable);
    if (!table) return;
    for (const TiXmlElement* entry = table->FirstChildElement(); entry; entry = entry->NextSiblingElement())
        ReadEntry(*entry, findings);
}

void CTextEntries::ReadEntry(const TiXmlElement& element, CFindings& findings) {
    const std::wstring name = L"<" + Utf8ToWide(element.Value()) + L">";
    const auto [first, isNew] = m_entries.try_emplace(element.Value(), Entry{&element, false});
    if (!isNew) {
        findings.Add(FindingCodes::kDuplicateEntry, element,
                     name + L" stands in line " + std::to_wstring(first->second.element->Row())
                         + L" already, and only that one counts");
    } else if (!element.GetText()) {
        // A comment before the text hides it as well.
        findings.Add(FindingCodes::kEmptyEntry, element,
                     name + L" does not begin with a text, the name stays as it is");
    }
}

void CTextEntries::CheckKeys(const TiXmlElement& root, CFindings& findings) {
    FirstUses keys;
    CollectKeys(root, keys);
    for (const auto& [key, element] : keys) {
        const auto entry = m_entries.find(key);
        if (entry != m_entries.end())
            entry->second.used = true;
        else
            ReportMissing(key, *element, findings);
    }
}

void CTextEntries::ReportMissing(const std::string& key, const TiXmlElement& element, CFindings& findings) const {
    std::vector<std::wstring> known;
    for (const auto& [name, _] : m_entries)
        known.push_back(Utf8ToWide(name));
    const std::wstring name = Utf8ToWide(key);
    findings.Add(FindingCodes::kKeyWithoutEntry, element,
                 L"the text file has no entry <" + name + L">" + NearestHint(name, known));
}

void CTextEntries::CheckUnused(CFindings& findings) const {
    for (const auto& [name, entry] : m_entries) {
        if (!entry.used)
            findings.Add(FindingCodes::kUnusedEntry, *entry.element, L"no rule file uses <" + Utf8ToWide(name) + L">");
    }
}
