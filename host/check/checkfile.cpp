#include "host/check/checkfile.h"

#include "host/common/xmlfile.h"
#include "sysservices/text.h"

namespace {

void CheckEncoding(const TiXmlDocument& document, CCheckFindings& findings) {
    const TiXmlNode* first = document.FirstChild();
    const TiXmlDeclaration* declaration = first ? first->ToDeclaration() : nullptr;
    if (!declaration) return;
    const std::wstring encoding = ToLower(Utf8ToWide(declaration->Encoding()));
    if (encoding.empty() || encoding == L"utf-8" || encoding == L"utf8") return;
    findings.Add(CheckCodes::kEncoding, *declaration, L"the engine reads texts as UTF-8, not as " + encoding);
}

// TinyXML takes several roots, of which the engine reads the first.
void CheckSingleRoot(const TiXmlElement& root, CCheckFindings& findings) {
    const TiXmlElement* second = root.NextSiblingElement();
    if (second) findings.Add(CheckCodes::kNotWellFormed, *second, L"a second root element, which is ignored");
}

}  // namespace

bool LoadCheckedFile(const std::wstring& path, TiXmlDocument& document, CCheckFindings& findings) {
    if (const auto fault = LoadXmlFile(path, document)) {
        const bool isRead = fault->kind == XmlFileFault::Kind::NotWellFormed;
        findings.Add(isRead ? CheckCodes::kNotWellFormed : CheckCodes::kCannotRead, fault->line, fault->reason);
        return false;
    }
    const TiXmlElement* root = document.RootElement();
    if (!root) {
        findings.Add(CheckCodes::kNotWellFormed, 1, L"there is no root element");
        return false;
    }
    CheckEncoding(document, findings);
    CheckSingleRoot(*root, findings);
    return true;
}
