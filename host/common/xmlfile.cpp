#include "host/common/xmlfile.h"

#include <filesystem>

#include "host/common/texts.h"
#include "sysservices/text.h"
#include "sysservices/xmldocument.h"

namespace {

using Kind = XmlFileFault::Kind;

XmlFileFault WhyUnreadable(const std::wstring& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {Kind::Folder, 0, Text(IDS_FILE_IS_FOLDER)};
    const auto size = std::filesystem::file_size(path, error);
    if (error) return {Kind::Missing, 0, Text(IDS_FILE_IS_MISSING)};
    if (size == 0) return {Kind::Unreadable, 0, Text(IDS_FILE_IS_EMPTY)};
    return {Kind::Unreadable, 0, Text(IDS_FILE_IS_LOCKED_OR_DEEP, {std::to_wstring(kXmlDeepestNesting)})};
}

XmlFileFault WhyNotWellFormed(const TiXmlDocument& document) {
    // TinyXML calls a file empty when it is plain text, or XML in UTF-16.
    const bool noElement = document.ErrorId() == TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY;
    return {Kind::NotWellFormed, document.ErrorRow(),
            noElement ? Text(IDS_FILE_HAS_NO_ELEMENT) : Utf8ToWide(document.ErrorDesc())};
}

}  // namespace

std::optional<XmlFileFault> LoadXmlFile(const std::wstring& path, TiXmlDocument& document) {
    if (LoadXmlDocument(path.c_str(), document)) return {};
    return document.Error() ? WhyNotWellFormed(document) : WhyUnreadable(path);
}
