#pragma once

#include <cstdint>
#include <list>
#include <string_view>
#include <vector>

#include "rules/containment.h"
#include "rules/excludepath.h"
#include "sysservices/folderwalk.h"

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
class CFolderScan {
public:
    CFolderScan(const FolderScanTarget& target, IFolderScanClient& client);

    // Scans one folder; `withFiles` false leaves out the folder's own files. False: the client ended it. A folder that
    // cannot be listed counts as scanned.
    [[nodiscard]] bool ScanFolder(const CFoundPath& folder, bool withFiles);

private:
    // What an open folder is gone through for. A search with a pattern does not tell the folders below: they take a
    // pass of their own, before the files.
    enum class Pass { Everything, Folders, FoldersThenFiles, Files };
    enum class Descent { Skip, WithFiles, WithoutFiles };

    void EnterIfAllowed(CFolderWalk& walk, bool withFiles);
    void Begin(CFolderWalk& walk, CFileSearch search, Pass pass);
    void EndPass(CFolderWalk& walk);
    CFileSearch ListFolder(const CFolderWalk& walk);
    [[nodiscard]] bool VisitEntry(CFolderWalk& walk);
    Descent ChooseDescent(const CFolderWalk& walk) const;
    [[nodiscard]] bool CollectFile(const CFolderWalk& walk);

    const FolderScanTarget m_target;
    IFolderScanClient& m_client;
    const bool m_everything;
    std::vector<Pass> m_passes;  // of each open folder
};
