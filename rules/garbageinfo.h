#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <string_view>

#include "cleaners/garbageemptyproc.h"
#include "rules/containment.h"
#include "rules/excludepath.h"
#include "rules/founditems.h"
#include "rules/igarbageinfo.h"
#include "rules/looppath.h"
#include "rules/registryrule.h"
#include "sysservices/itemidlist.h"
#include "sysservices/lock.h"
#include "sysservices/shellitemproc.h"
#include "tree/gatherproc.h"
#include "tree/volumeproc.h"

class CExplanation;
class CGarbageCatagory;
class IGarbageCatagory;
struct RuleChildren;
struct RuleElement;

// What a rule looks for. It never leaves the module, so it is not packed.
struct _DSW_Garbage_Info_ {
    bool IsRegistry = false;
    bool IsFolder = false;     // a folder to scan, not one file
    int32_t FolderIndex = -1;  // shell folder identifier (CSIDL), or -1 for none
    CString FolderEnvDir;      // environment variable that holds the base folder
    CString Path;              // after loading the absolute location, or the key path of a registry rule
    CString Filter;            // file name pattern, or the sub-key path of a registry rule
    bool Iteration = false;    // descend into what is below
    bool LoopPath = false;
    bool UseShellBrowse = false;
};

// One cleaning rule: a "GarbageInfo" element. A file rule names a folder or file, a registry rule a key and values in
// it; a registry rule finds nothing when gathered and acts only when cleaned.
class CGarbageInfo : public IGarbageInfo,
                     public _DSW_Garbage_Info_,
                     public CVolumeProc<CGarbageCatagory>,
                     public CGatherProc<CGarbageInfo, CGarbageInfo> {
public:
    // Two views of one parent, whose class is not known down here; both may be null.
    CGarbageInfo(CGarbageCatagory* parent, IGarbageCatagory* category);
    ~CGarbageInfo() override;

    // IGarbageInfo
    void EnumFound(IVisitor* visitor) override;
    bool Explain(IExplanationVisitor* visitor) override;

    // CVolumeProc
    bool LoadXml(const TiXmlElement* element) override;
    bool SaveXml(TiXmlElement* parentElement) override;
    // A rule has no children. It forgets what it found and does nothing more: a run that has come to it ends here.
    void ReleaseContent() noexcept override;

    // CGatherProc. Running out of memory costs the rule what it has not yet done, not the run.
    bool Gather() override;
    bool Clean(uint64_t a, uint64_t b, uint64_t c) override;
    void ClearFound() override;

private:
    class CScan;

    bool LoadFileRule(const TiXmlElement& element, RuleElement& rule);
    void CreateEmptyProc(const CString& name);
    bool ResolveLocation(const TiXmlElement& element);
    void OpenVirtualFolder();
    void OpenShellBrowser();
    void OpenShellItem(CItemIdList folder, bool wholeItemMode);
    void LoadChildren(RuleChildren children);

    bool Scan();
    void ScanFolders(CScan& scan);
    void ScanFile(CScan& scan);
    void ScanShellFolder(CScan& scan);
    void ListShellItems(CScan& scan);
    void ExplainTo(CExplanation& out);
    void ExplainScope(CExplanation& out) const;
    void ExplainKey(CExplanation& out) const;
    void ExplainFolder(CExplanation& out) const;
    void ExplainShell(CExplanation& out);
    RegistryRule WhatToRemove() const;
    bool CleanFound();
    bool EmptyShellFolder();
    bool DeleteFoundFile(const CString& path);
    bool RetryDelete(const CString& path);
    uint64_t CategoryValue() const noexcept;

    IGarbageCatagory* const m_category;  // the parent; kept alive by CVolumeProc

    // Guards the found items and the generation. A clean holds it while it tells the host, and while the shell deletes.
    CLock m_lock;
    CFoundItems m_found;
    // Counts up with every item that leaves the list: a walk that was interrupted by a notification, from which the
    // host scans or cleans, can tell that its place in the list may be gone.
    uint32_t m_generation = 0;
    std::atomic<bool> m_released = false;  // also read by Explain, from any thread

    // The rest of what the rule file says. Two members serve both kinds of rule.
    ContainmentSet ExcludeFilters;
    ContainmentSet m_secondFilters;  // no attribute fills it
    std::list<LoopStep> LoopSteps;
    std::list<CString> TerminalPaths;
    std::list<CString>& ValueNames() noexcept { return TerminalPaths; }
    const std::list<CString>& ValueNames() const noexcept { return TerminalPaths; }
    bool ExactMatch = false;  // for the terminal paths
    std::list<ExcludePathEntry> ExcludePaths;
    bool ExcludePath = false;  // has "ExcludePath" children
    bool SelfExclude = false;  // leave out the location's own files
    bool& DelKey() noexcept { return SelfExclude; }
    bool DelKey() const noexcept { return SelfExclude; }
    HKEY RootKey = nullptr;     // a predefined root, never closed
    CItemIdList m_shellFolder;  // outlives the shell item, which borrows it
    std::unique_ptr<CShellItemProc> m_shellItem;
    CString m_emptyProcName;
    std::unique_ptr<CGarbageEmptyProc> EmptyProc;
};
