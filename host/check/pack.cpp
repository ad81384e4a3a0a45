#include "host/check/pack.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "host/check/rulechecks.h"
#include "host/check/schema.h"
#include "host/check/textentries.h"
#include "host/common/xmlfile.h"
#include "sysservices/text.h"

namespace {

void CheckEncoding(const TiXmlDocument& document, CFindings& findings) {
    const TiXmlNode* first = document.FirstChild();
    const TiXmlDeclaration* declaration = first ? first->ToDeclaration() : nullptr;
    if (!declaration) return;
    const std::wstring encoding = ToLower(Utf8ToWide(declaration->Encoding()));
    if (encoding.empty() || encoding == L"utf-8" || encoding == L"utf8") return;
    findings.Add(FindingCodes::kEncoding, *declaration, L"the engine reads texts as UTF-8, not as " + encoding);
}

// TinyXML takes several roots, of which the engine reads the first.
void CheckSingleRoot(const TiXmlElement& root, CFindings& findings) {
    const TiXmlElement* second = root.NextSiblingElement();
    if (second) findings.Add(FindingCodes::kNotWellFormed, *second, L"a second root element, which is ignored");
}

// Reads an XML file, and tells why when that fails. False then; otherwise the document has a root element.
[[nodiscard]] bool LoadCheckedFile(const std::wstring& path, TiXmlDocument& document, CFindings& findings) {
    if (const auto fault = LoadXmlFile(path, document)) {
        const bool isRead = fault->kind == XmlFileFault::Kind::NotWellFormed;
        findings.Add(isRead ? FindingCodes::kNotWellFormed : FindingCodes::kCannotRead, fault->line, fault->reason);
        return false;
    }
    const TiXmlElement* root = document.RootElement();
    if (!root) {
        findings.Add(FindingCodes::kNotWellFormed, 1, L"there is no root element");
        return false;
    }
    CheckEncoding(document, findings);
    CheckSingleRoot(*root, findings);
    return true;
}

void AppendByLine(std::vector<Finding>& all, const CFindings& findings) {
    const auto begin = all.insert(all.end(), findings.List().begin(), findings.List().end());
    std::stable_sort(begin, all.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
}

// The text file of a pack while the rule files are checked against it.
class CTextFileCheck {
public:
    explicit CTextFileCheck(const std::wstring& path) : m_findings(path) {
        if (!path.empty() && LoadCheckedFile(path, m_document, m_findings))
            m_texts.emplace(*m_document.RootElement(), m_findings);
    }

    void CheckKeys(const TiXmlElement& rules, CFindings& findings) {
        if (m_texts) m_texts->CheckKeys(rules, findings);
    }
    const CFindings& Finish(bool allRulesRead) {
        if (m_texts && allRulesRead) m_texts->CheckUnused(m_findings);
        return m_findings;
    }

private:
    CFindings m_findings;
    TiXmlDocument m_document;
    std::optional<CTextEntries> m_texts;
};

// The rules of a file, wherever they stand.
class CRuleCheck {
public:
    explicit CRuleCheck(CFindings& findings) : m_findings(findings) {}

    void CheckBelow(const TiXmlElement& parent) {
        for (const TiXmlElement* child = parent.FirstChildElement(); child; child = child->NextSiblingElement()) {
            if (std::strcmp(child->Value(), "GarbageInfo") == 0)
                CheckRule(CheckedRule(*child), std::strcmp(parent.Value(), "XP") == 0);
            else
                CheckBelow(*child);
        }
    }

private:
    void CheckRule(const CheckedRule& rule, bool isForXp) {
        CheckDanger(rule, m_findings);
        CheckRegistry(rule, m_findings);
        CheckLocation(rule, m_findings);
        CheckEffect(rule, m_findings);
        CheckChildren(rule, m_findings);
        CheckTokens(rule, m_findings);
        m_duplicates.Add(rule, isForXp, m_findings);
    }

    CFindings& m_findings;
    CDuplicateCheck m_duplicates;
};

// False when the file cannot be read.
bool CheckRuleFile(const std::wstring& path, CTextFileCheck& texts, CFindings& findings) {
    TiXmlDocument document;
    if (!LoadCheckedFile(path, document, findings)) return false;
    const TiXmlElement& root = *document.RootElement();
    CheckRuleSchema(root, findings);
    CRuleCheck(findings).CheckBelow(root);
    texts.CheckKeys(root, findings);
    return true;
}

}  // namespace

std::vector<Finding> CheckPack(const std::vector<std::wstring>& ruleFiles, const std::wstring& textFile) {
    std::vector<Finding> all;
    CTextFileCheck texts(textFile);
    bool allRulesRead = true;
    for (const std::wstring& path : ruleFiles) {
        CFindings findings(path);
        allRulesRead &= CheckRuleFile(path, texts, findings);
        AppendByLine(all, findings);
    }
    AppendByLine(all, texts.Finish(allRulesRead));
    return all;
}
