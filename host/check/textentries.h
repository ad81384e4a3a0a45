#pragma once

#include <tinyxml.h>

#include <map>
#include <string>

#include "host/check/finding.h"

// The entries of a text file, and which of them the rule files ask for. Borrows the document.
class CTextEntries {
public:
    // Reports what is wrong with the file itself.
    CTextEntries(const TiXmlElement& root, CFindings& findings);

    // Reports the keys ("ResID") of a rule file that have no entry, each where it is first used.
    void CheckKeys(const TiXmlElement& root, CFindings& findings);
    // Reports the entries that no key asked for.
    void CheckUnused(CFindings& findings) const;

private:
    struct Entry {
        const TiXmlElement* element;
        bool used;
    };

    void ReadEntry(const TiXmlElement& element, CFindings& findings);
    void ReportMissing(const std::string& key, const TiXmlElement& element, CFindings& findings) const;

    std::map<std::string, Entry> m_entries;
};
