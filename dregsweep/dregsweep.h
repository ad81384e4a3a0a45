#pragma once

#include <windows.h>

#include <atomic>
#include <list>
#include <source_location>
#include <vector>

#include "dregsweep/icompanionobject.h"
#include "dregsweep/idregsweep.h"
#include "sysservices/lock.h"
#include "sysservices/reference.h"
#include "sysservices/text.h"
#include "tree/appcatagory.h"
#include "tree/childlist.h"
#include "tree/volumeproc.h"

class CResIdTextTable;

// The cleaning engine: owns the top-level categories, drives the runs over them and stands between them and the host.
class CDregsweep final : public IDregsweep, public CVolumeProc<CDregsweep> {
public:
    // In upgrade mode refused files and folders may be unlocked and tried again.
    explicit CDregsweep(bool upgradeMode);
    ~CDregsweep() override;

    // IEUObject. Counts the references from outside apart from those that its own categories hold, which do not keep
    // the engine alive.
    uint32_t AddRef() noexcept override;
    uint32_t Release() noexcept override;

    // IDregsweep
    IAppCatagory* GetFirstChild() override;
    IAppCatagory* GetNextChild(IAppCatagory* current) override;
    uint64_t Init(const wchar_t* configPath, const wchar_t* textPath, ITextSelector* selector) override;
    uint64_t Uninit() override;
    uint64_t ChangeResID(const wchar_t* textPath, ITextSelector* selector) override;
    void AddAllowedPath(const wchar_t* prefix) override;
    void ClearAllowedPaths() override;
    bool Gather(IDregsweepCallback* callback) override;
    bool Clean(IDregsweepCallback* callback) override;
    bool ResetForGather() override;
    bool PrepareForClean() override;
    uint64_t SetAllChecked(bool checked) override;
    uint64_t ClearTotals() override;
    bool HostNotify1(uint64_t arg) override;
    bool HostNotify2(uint64_t arg) override;
    bool HostNotify3(uint64_t arg) override;

    // CVolumeProc: the top of every report and question.
    bool ReportProgress(uint32_t begin, uint32_t end) override;
    bool ReportFound(const CString& item, const uint64_t* size, uint64_t extra) override;
    bool ReportEmptied(const CString& item, const uint64_t* size, uint64_t extra, bool subtract,
                       uint32_t count) override;
    bool IsUpgradeMode() override { return m_upgradeMode; }
    bool IsPathAllowed(const CString& path) override;

private:
    using Categories = std::vector<CReference<CAppCatagory>>;

    // A run in progress. Hosts may start another from a notification, or end the engine and initialise it anew.
    struct Run {
        IDregsweepCallback* callback;
        uint32_t tree;         // the tree that it walks, see m_tree
        bool stopped = false;  // by the host
    };
    class CRunScope;

    uint64_t DoInit(const wchar_t* configPath, const wchar_t* textPath, ITextSelector* selector);
    uint64_t StartCompanion();
    uint64_t LoadConfigFile();
    bool LoadConfig(const TiXmlElement* root);
    bool LoadCategories(const TiXmlElement& root);
    uint64_t LoadTexts(const wchar_t* textPath, ITextSelector* selector);

    bool RunGather(IDregsweepCallback* callback);
    bool RunClean(IDregsweepCallback* callback);
    void TellCompanionOfRun() noexcept;
    Categories ShareCategories();
    template <class Visit>
    void EachCategory(Visit visit) noexcept;
    // Has the host ended the engine, or begun another tree, since the run started? It then learns nothing more of it.
    bool IsOver(const Run& run) const noexcept { return run.tree != m_tree; }
    template <class Call>
    bool AskHost(const wchar_t* cancelTrace, Call call,
                 std::source_location where = std::source_location::current()) noexcept;

    std::atomic<uint32_t> m_outsideReferences{1};
    CReference<ICompanionObject> m_companion;  // null when its library is absent
    std::atomic<bool> m_initialised{false};
    const bool m_upgradeMode;
    CChildList<CAppCatagory, IAppCatagory> m_categories;  // with the category lock and the cursor
    uint32_t m_tree = 0;                                  // counts the trees that were let go
    Run* m_run = nullptr;                                 // the innermost run; guarded by the category lock
    CString m_configPath;
    CLock m_pathLock;  // guards the allowed paths; taken briefly, during a run inside the category lock
    std::list<CString> m_allowedPaths;
    bool m_allowedPathLost = false;  // there was no memory for one: no path is allowed
};
