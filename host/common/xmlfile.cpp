#include "host/common/xmlfile.h"

#include <filesystem>

#include "sysservices/text.h"
#include "sysservices/xmldocument.h"

namespace {

using Kind = XmlFileFault::Kind;

XmlFileFault WhyUnreadable(const std::wstring& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {Kind::Folder, 0, L"this is a folder, name the file in it"};
    const auto size = std::filesystem::file_size(path, error);
    if (error) return {Kind::Missing, 0, L"there is no such file, check the path"};
    if (size == 0) return {Kind::Unreadable, 0, L"the file is empty"};
    return {Kind::Unreadable, 0,
            L"another program lets nobody read it, or its elements are nested more than "
                + std::to_wstring(kXmlDeepestNesting) + L" deep"};
}

XmlFileFault WhyNotWellFormed(const TiXmlDocument& document) {
    // TinyXML calls a file empty when it is plain text, or XML in UTF-16.
    const bool noElement = document.ErrorId() == TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY;
    return {Kind::NotWellFormed, document.ErrorRow(),
            noElement ? L"no element can be read, save it as UTF-8" : Utf8ToWide(document.ErrorDesc())};
}

}  // namespace

std::optional<XmlFileFault> LoadXmlFile(const std::wstring& path, TiXmlDocument& document) {
    if (LoadXmlDocument(path.c_str(), document)) return {};
    return document.Error() ? WhyNotWellFormed(document) : WhyUnreadable(path);
}
