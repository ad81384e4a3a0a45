#include "tree/residtexttable.h"

#include <tinyxml.h>

CResIdTextTable::CResIdTextTable(const TiXmlElement& table) {
    for (const TiXmlElement* entry = table.FirstChildElement(); entry; entry = entry->NextSiblingElement()) {
        // try_emplace keeps the entry that is there: of two with the same name the first wins.
        m_entries.try_emplace(entry->Value(), entry);
    }
}

const char* CResIdTextTable::Find(std::string_view key) const {
    const auto entry = m_entries.find(key);
    return entry == m_entries.end() ? nullptr : entry->second->GetText();
}
