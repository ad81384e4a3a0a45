#pragma once

#include <tinyxml.h>

#include <optional>
#include <string>

// Why an XML file is of no use.
struct XmlFileFault {
    enum class Kind { Missing, Folder, Unreadable, NotWellFormed };

    Kind kind;
    int line;             // from 1; 0 for the file as a whole
    std::wstring reason;  // for a person, such as "the file is empty"
};

// Reads an XML file as the engine does, which takes one that is missing or no XML for an empty one. Nothing when the
// document was read; it may still lack a root element.
[[nodiscard]] std::optional<XmlFileFault> LoadXmlFile(const std::wstring& path, TiXmlDocument& document);
