#include "host/check/checkpack.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "host/check/checkchildren.h"
#include "host/check/checkdanger.h"
#include "host/check/checkduplicate.h"
#include "host/check/checkeffect.h"
#include "host/check/checkfile.h"
#include "host/check/checklocation.h"
#include "host/check/checkschema.h"
#include "host/check/checktext.h"
#include "host/check/checktoken.h"

namespace {

void AppendByLine(std::vector<CheckFinding>& all, const CCheckFindings& findings) {
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

    void CheckKeys(const TiXmlElement& rules, CCheckFindings& findings) {
        if (m_texts) m_texts->CheckKeys(rules, findings);
    }
    const CCheckFindings& Finish(bool allRulesRead) {
        if (m_texts && allRulesRead) m_texts->CheckUnused(m_findings);
        return m_findings;
    }

private:
    CCheckFindings m_findings;
    TiXmlDocument m_document;
    std::optional<CCheckedTexts> m_texts;
};

// The rules of a file, wherever they stand.
class CRuleCheck {
public:
    explicit CRuleCheck(CCheckFindings& findings) : m_findings(findings) {}

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
        CheckLocation(rule, m_findings);
        CheckEffect(rule, m_findings);
        CheckChildren(rule, m_findings);
        CheckTokens(rule, m_findings);
        m_duplicates.Add(rule, isForXp, m_findings);
    }

    CCheckFindings& m_findings;
    CDuplicateCheck m_duplicates;
};

// False when the file cannot be read.
bool CheckRuleFile(const std::wstring& path, CTextFileCheck& texts, CCheckFindings& findings) {
    TiXmlDocument document;
    if (!LoadCheckedFile(path, document, findings)) return false;
    const TiXmlElement& root = *document.RootElement();
    CheckRuleSchema(root, findings);
    CRuleCheck(findings).CheckBelow(root);
    texts.CheckKeys(root, findings);
    return true;
}

}  // namespace

std::vector<CheckFinding> CheckPack(const std::vector<std::wstring>& ruleFiles, const std::wstring& textFile) {
    std::vector<CheckFinding> all;
    CTextFileCheck texts(textFile);
    bool allRulesRead = true;
    for (const std::wstring& path : ruleFiles) {
        CCheckFindings findings(path);
        allRulesRead &= CheckRuleFile(path, texts, findings);
        AppendByLine(all, findings);
    }
    AppendByLine(all, texts.Finish(allRulesRead));
    return all;
}
