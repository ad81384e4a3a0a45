#pragma once

#include <tinyxml.h>

#include <map>
#include <string>

#include "host/check/checkfinding.h"

// The entries of a text file, and which of them the rule files ask for. Borrows the document.
class CCheckedTexts {
public:
    // Reports what is wrong with the file itself.
    CCheckedTexts(const TiXmlElement& root, CCheckFindings& findings);

    // Reports the keys ("ResID") of a rule file that have no entry, each where it is first used.
    void CheckKeys(const TiXmlElement& root, CCheckFindings& findings);
    // Reports the entries that no key asked for.
    void CheckUnused(CCheckFindings& findings) const;

private:
    struct Entry {
        const TiXmlElement* element;
        bool used;
    };

    void ReadEntry(const TiXmlElement& element, CCheckFindings& findings);
    void ReportMissing(const std::string& key, const TiXmlElement& element, CCheckFindings& findings) const;

    std::map<std::string, Entry> m_entries;
};
