#include "host/check/checkfile.h"

#include <filesystem>

#include "sysservices/text.h"
#include "sysservices/xmldocument.h"

namespace {

std::wstring WhyUnreadable(const std::wstring& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return L"this is a folder, name the file in it";
    const auto size = std::filesystem::file_size(path, error);
    if (error) return L"there is no such file, check the path";
    if (size == 0) return L"the file is empty";
    return L"another program is writing to the file, or its elements are nested more than "
           + std::to_wstring(kXmlDeepestNesting) + L" deep";
}

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

std::wstring WhyNotWellFormed(const TiXmlDocument& document) {
    // TinyXML calls a file empty when it is plain text, or XML in UTF-16.
    if (document.ErrorId() == TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY) return L"no element can be read, save it as UTF-8";
    return Utf8ToWide(document.ErrorDesc());
}

bool LoadCheckedFile(const std::wstring& path, TiXmlDocument& document, CCheckFindings& findings) {
    if (!LoadXmlDocument(path.c_str(), document)) {
        if (document.Error())
            findings.Add(CheckCodes::kNotWellFormed, document.ErrorRow(), WhyNotWellFormed(document));
        else
            findings.Add(CheckCodes::kCannotRead, 0, WhyUnreadable(path));
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
