#pragma once

#include <cstdint>
#include <list>
#include <string_view>
#include <vector>

#include "rules/containment.h"
#include "rules/excludepath.h"
#include "sysservices/filesearch.h"
#include "sysservices/foundpath.h"

// What the scan of a folder looks for. Borrows from its rule.
struct FolderScanTarget {
    const CString& pattern;
    bool recurse;  // also below the folder
    const ContainmentSet& excludedNames;
    const std::list<ExcludePathEntry>& excludedPaths;
};

// What a folder scan asks the rule that it works for.
class IFolderScanClient {
public:
    // May the folder be scanned? One that may not counts as scanned.
    virtual bool IsAllowed(const CString& folder, bool withFiles) = 0;
    // May a folder that cannot be listed be unlocked and tried again?
    virtual bool MayUnlock() = 0;
    // A file that matches. False ends the scan.
    virtual bool Found(const CFoundPath& file, uint64_t size) = 0;

protected:
    ~IFolderScanClient() = default;
};

// Walks a folder, and what is below it if the target says so, leaves out what is excluded, and reports every file that
// the pattern matches. Only directory entries are read, never a file.
//
// Folders may nest as deep as paths allow: one path serves all levels, and the open searches live on the heap.
class CFolderScan {
public:
    CFolderScan(const FolderScanTarget& target, IFolderScanClient& client);

    // Scans one folder; `withFiles` false leaves out the folder's own files. False: the client ended it. A folder that
    // cannot be listed counts as scanned.
    [[nodiscard]] bool ScanFolder(const CFoundPath& folder, bool withFiles);

private:
    struct OpenFolder {
        CFileSearch search;
        CFoundPath::Place place;
        bool withFiles;
    };
    enum class Descent { Skip, WithFiles, WithoutFiles };

    // m_path holds the folder in hand, or the entry in hand below it.
    [[nodiscard]] bool Enter(bool withFiles);
    [[nodiscard]] bool VisitEntry();
    [[nodiscard]] bool Leave();
    CFileSearch OpenSearch();
    CFileSearch Search(std::wstring_view pattern);
    Descent ChooseDescent(const WIN32_FIND_DATAW& entry);
    [[nodiscard]] bool CollectFiles();
    [[nodiscard]] bool CollectFile(const WIN32_FIND_DATAW& entry);

    const FolderScanTarget m_target;
    IFolderScanClient& m_client;
    // One pass over everything, instead of one for the folders and one with the pattern.
    const bool m_everything;
    CFoundPath m_path;
    std::vector<OpenFolder> m_open;
};
