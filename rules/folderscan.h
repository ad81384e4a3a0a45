#pragma once

#include <vector>

#include "sysservices/filesearch.h"
#include "sysservices/text.h"

class CGarbageInfo;

// The scan of a folder for one rule: walks the folder, and what is below it when the rule iterates, leaves out what the
// rule excludes, and has the rule record every file that its filter matches. Only directory entries are read, never a
// file.
//
// Folders may nest as deep as paths allow: one path buffer serves all levels, and the open searches live on the heap.
class CFolderScan {
public:
    explicit CFolderScan(CGarbageInfo& rule);

    // Scans one folder; `withFiles` false leaves out the folder's own files. False: the host asked to stop. A folder
    // that cannot be listed, or that the host has not allowed, counts as scanned.
    [[nodiscard]] bool ScanFolder(const CString& folder, bool withFiles);

private:
    struct OpenFolder {
        CFileSearch search;
        size_t pathLength;
        bool withFiles;
    };
    enum class Descent { Skip, WithFiles, WithoutFiles };

    // m_path holds the folder in hand, or the entry in hand below it.
    [[nodiscard]] bool Enter(bool withFiles);
    [[nodiscard]] bool VisitEntry();
    [[nodiscard]] bool Leave();
    CFileSearch OpenSearch();
    CFileSearch SearchFolder();
    Descent ChooseDescent(const WIN32_FIND_DATAW& entry);
    [[nodiscard]] bool CollectFiles();
    [[nodiscard]] bool CollectFile(const WIN32_FIND_DATAW& entry);
    void AppendName(const wchar_t* name) { m_path.append(1, L'\\').append(name); }

    CGarbageInfo& m_rule;
    const uint32_t m_generation;
    // One pass over everything, instead of one for the folders and one with the pattern.
    const bool m_everything;
    CString m_path;
    std::vector<OpenFolder> m_open;
};
