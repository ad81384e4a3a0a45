#pragma once

#include <string_view>
#include <unordered_map>

class TiXmlElement;

// The texts of a localised-text file by key: one element per key, named after it, whose content is the text. Borrows
// the element that it was made from.
class CResIdTextTable {
public:
    explicit CResIdTextTable(const TiXmlElement& table);

    // The text (UTF-8) of the first entry of that name, compared byte for byte; null when there is no entry or the
    // entry has no text.
    const char* Find(std::string_view key) const;

private:
    std::unordered_map<std::string_view, const TiXmlElement*> m_entries;
};
