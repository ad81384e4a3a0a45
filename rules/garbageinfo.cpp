#include "rules/garbageinfo.h"

#include <shlobj.h>
#include <tinyxml.h>

#include <algorithm>
#include <iterator>

#include "cleaners/emptyprocregistry.h"
#include "rules/explanation.h"
#include "rules/folderscan.h"
#include "rules/location.h"
#include "rules/rootkeyname.h"
#include "rules/ruleelement.h"
#include "sysservices/appinfomanager.h"
#include "sysservices/fileaccess.h"
#include "sysservices/filesearch.h"
#include "sysservices/nothrow.h"
#include "sysservices/reference.h"
#include "sysservices/trace.h"
#include "tree/gathercheckprocimpl.h"
#include "tree/gatherprocimpl.h"
#include "tree/igarbagecatagory.h"

namespace {

constexpr uint32_t FlagIf(bool set, GarbageScopeFlags flag) noexcept {
    return set ? static_cast<uint32_t>(flag) : 0;
}

void MoveToEnd(std::vector<CString>& texts, std::list<CString>& list) {
    std::move(texts.begin(), texts.end(), std::back_inserter(list));
}

}  // namespace

CGarbageInfo::CGarbageInfo(CGarbageCatagory* parent, IGarbageCatagory* category)
    : IGarbageInfo(category),
      CVolumeProc(parent),
      m_category(category) {}

CGarbageInfo::~CGarbageInfo() {
    CGarbageInfo::ClearFound();
    m_shellItem.reset();
    EmptyProc.reset();
}

bool CGarbageInfo::LoadXml(const TiXmlElement* element) {
    LoadSelState(element);
    RuleElement rule(*element);
    IsRegistry = rule.isRegistry;
    Iteration = rule.iteration;
    Path = std::move(rule.path);
    Filter = std::move(rule.filter);
    RootKey = rule.rootKey;
    if (!IsRegistry) return LoadFileRule(*element, rule);
    // A registry rule always loads: one that names no key does nothing when it is cleaned.
    DelKey() = rule.deleteKey;
    MoveToEnd(rule.valueNames, ValueNames());
    return true;
}

bool CGarbageInfo::LoadFileRule(const TiXmlElement& element, RuleElement& rule) {
    // Empty when anything is missing: beside a base folder that then means the whole base folder.
    if (rule.getByReg) Path = PathFromRegistry(rule.rootKey, Path, rule.value);
    IsFolder = rule.isFolder;
    FolderIndex = rule.folderIndex;
    FolderEnvDir = std::move(rule.folderVariable);
    // One by one and in their order: a set that is no strict order depends on it.
    for (CString& name : rule.excludedNames)
        ExcludeFilters.insert(std::move(name));
    if (!rule.emptyProc.empty()) CreateEmptyProc(rule.emptyProc);
    LoopPath = rule.loopPath;
    ExcludePath = rule.excludePath;
    SelfExclude = rule.selfExclude;
    UseShellBrowse = rule.useShellBrowse;

    // Without a base folder the rule loads if "Path" is there at all, and its children are never read.
    if (FolderIndex == -1 && FolderEnvDir.empty()) return rule.hasPath;
    return ResolveLocation(element);
}

void CGarbageInfo::CreateEmptyProc(const CString& name) {
    m_emptyProcName = name;
    EmptyProc = EmptyProcRegistry::CreateByName(name);
    // An unknown name costs the rule its cleaner, not its load.
    if (!EmptyProc) DregsweepTrace(L"[Dregsweep] EmptyProc fail %s", name.c_str());
}

bool CGarbageInfo::ResolveLocation(const TiXmlElement& element) {
    CString base;
    if (FolderIndex == -1) {
        FolderOfVariable(FolderEnvDir, base);
    } else if (!FolderOfIndex(FolderIndex, base)) {
        OpenVirtualFolder();
    }
    if (base.empty() && !m_shellItem) return false;
    // Whether the folder is there or not: only the scan finds out.
    if (m_category) m_category->SetAppPresent(true);
    // A virtual folder leaves the path as it was and reads no children.
    if (m_shellItem) return true;

    // Without a path of its own the rule means the bare folder, with no "\\" added.
    if (!Path.empty() && base.back() != L'\\') base += L'\\';
    Path = base + Path;
    // The shell browser reads neither kind of children, and loads also when the path cannot be parsed: the scan then
    // takes it for a plain folder or file.
    if (UseShellBrowse) {
        OpenShellBrowser();
    } else if (LoopPath || ExcludePath) {
        LoadChildren(RuleChildren(element));
    }
    return true;
}

void CGarbageInfo::LoadChildren(RuleChildren children) {
    if (LoopPath) {
        for (auto& step : children.steps)
            LoopSteps.push_back(std::move(step.child));
        for (auto& terminal : children.terminals)
            MoveToEnd(terminal.child, TerminalPaths);
        ExactMatch = children.exactMatch;
    }
    if (!ExcludePath) return;
    for (auto& exclusion : children.exclusions)
        ExcludePaths.push_back(std::move(exclusion.child));
}

void CGarbageInfo::OpenVirtualFolder() {
    CItemIdList folder;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, FolderIndex, folder.Put())) || !folder) return;
    OpenShellItem(std::move(folder), /*wholeItemMode=*/true);
}

void CGarbageInfo::OpenShellBrowser() {
    CReference<IShellFolder> desktop;
    if (FAILED(SHGetDesktopFolder(desktop.Put()))) return;
    CString name = Path;  // the call takes a text that it may change
    CItemIdList folder;
    if (FAILED(desktop->ParseDisplayName(nullptr, nullptr, name.data(), nullptr, folder.Put(), nullptr)) || !folder) {
        return;
    }
    OpenShellItem(std::move(folder), /*wholeItemMode=*/false);
}

void CGarbageInfo::OpenShellItem(CItemIdList folder, bool wholeItemMode) {
    m_shellFolder = std::move(folder);
    HRESULT result = E_FAIL;
    m_shellItem = std::make_unique<CShellItemProc>(m_shellFolder.get(), wholeItemMode, result);
    if (SUCCEEDED(result)) return;
    m_shellItem.reset();
    m_shellFolder = {};
}

// For display only: loaded again, the rule would have lost its filter and exclusions, and a path with a folder index
// would be put behind the folder twice.
bool CGarbageInfo::SaveXml(TiXmlElement* parentElement) {
    TiXmlElement* element = parentElement->LinkEndChild(new TiXmlElement("GarbageInfo"))->ToElement();
    element->SetAttribute("Path", WideToUtf8(Path).c_str());
    element->SetAttribute("IsFolder", IsFolder ? 1 : 0);
    element->SetAttribute("FolderIndex", FolderIndex);
    return true;
}

// One scan of the rule, as long as the list that it fills is there: it ends, without a word, when the host has the rule
// scanned or cleaned from a notification. The run then goes on.
class CGarbageInfo::CScan final : public IFolderScanClient {
public:
    explicit CScan(CGarbageInfo& rule) noexcept : m_rule(rule), m_generation(rule.m_generation) {}

    bool IsAllowed(const CString& folder, bool withFiles) override {
        return m_rule.QueryPathAllowed(folder, withFiles);
    }
    bool MayUnlock() override { return m_rule.QueryUpgradeMode(); }
    bool Found(const CFoundPath& file, uint64_t size) override { return Found(file, size, CItemIdList()); }

    // Lists and reports an item; false ends the scan.
    bool Found(const CFoundPath& path, uint64_t size, CItemIdList itemId) {
        {
            const CLockGuard guard(m_rule.m_lock);
            if (m_generation != m_rule.m_generation) return false;  // the shell may let messages in
            m_rule.m_found.Append(path, size, std::move(itemId));
        }
        // The host never hears of an item without a text, which a clean deletes all the same.
        if (path.Text().empty()) return true;
        m_stopped = !m_rule.ReportFound(path.Text(), &size, m_rule.CategoryValue());
        return !m_stopped && m_generation == m_rule.m_generation;
    }

    // Has the host answered false?
    bool Stopped() const noexcept { return m_stopped; }

private:
    CGarbageInfo& m_rule;
    const uint32_t m_generation;
    bool m_stopped = false;
};

bool CGarbageInfo::Gather() {
    return NoThrow(true, [this] { return Scan(); });
}

bool CGarbageInfo::Scan() {
    // A registry rule acts only when it is cleaned.
    if (m_released || IsRegistry || (Path.empty() && !m_shellItem)) return true;
    ClearFound();
    ZeroVolume();
    CScan scan(*this);
    if (m_shellItem)
        UseShellBrowse ? ListShellItems(scan) : ScanShellFolder(scan);
    else
        IsFolder ? ScanFolders(scan) : ScanFile(scan);
    return !scan.Stopped();
}

void CGarbageInfo::ScanFolders(CScan& scan) {
    CFolderScan folders({Filter, Iteration, ExcludeFilters, ExcludePaths}, scan);
    if (!LoopPath) {
        (void)folders.ScanFolder(CFoundPath(Path), !SelfExclude);
        return;
    }
    // Terminal paths without loop steps find nothing, and SelfExclude has no say over the folders of a loop.
    if (LoopSteps.empty()) return;
    for (const CFoundPath& folder : ExpandLoop(Path, LoopSteps, {TerminalPaths, ExactMatch})) {
        if (!folders.ScanFolder(folder, /*withFiles=*/true)) return;
    }
}

// One match only, listed under the rule's path with its wildcards. Such an item cannot be deleted.
void CGarbageInfo::ScanFile(CScan& scan) {
    const CFileSearch search(Path.c_str());
    if (search) scan.Found(CFoundPath(Path), EntrySize(search.Entry()));
}

void CGarbageInfo::ScanShellFolder(CScan& scan) {
    struct Walk {
        CScan& scan;
        bool goOn = true;
    };
    constexpr auto onFile = [](uint32_t, const wchar_t* path, const WIN32_FIND_DATAW& findData, void* context) {
        auto& walk = *static_cast<Walk*>(context);
        walk.goOn = walk.scan.Found(CFoundPath(path), EntrySize(findData));
        return walk.goOn;
    };
    constexpr auto onFolder = [](const wchar_t*, const wchar_t*, const WIN32_FIND_DATAW*, void* context) {
        return static_cast<Walk*>(context)->goOn;
    };
    Walk walk{scan};
    (void)m_shellItem->Walk(onFile, onFolder, &walk);
}

void CGarbageInfo::ListShellItems(CScan& scan) {
    constexpr auto onItem = [](const SHFILEINFOW& info, CItemIdList& child, void* context) {
        return static_cast<CScan*>(context)->Found(CFoundPath(info.szDisplayName), 0, std::move(child));
    };
    (void)m_shellItem->ListItems(onItem, &scan);
}

void CGarbageInfo::ReleaseContent() noexcept {
    m_released = true;
    ClearFound();
}

void CGarbageInfo::ClearFound() {
    const CLockGuard guard(m_lock);
    m_found.Clear();
    ++m_generation;
    m_secondFilters.clear();
}

void CGarbageInfo::EnumFound(IVisitor* visitor) {
    if (!visitor) return;
    NoThrow(false, [&] {
        const auto keepAlive = CReference<CGarbageInfo>::Share(this);
        const CLockGuard guard(m_lock);
        const uint32_t generation = m_generation;
        CString path;  // outlives the item when the visitor has the rule scanned or cleaned
        for (auto item = m_found.begin(); item != m_found.end(); ++item) {
            if (item->Path().empty()) continue;
            path = item->Path();
            visitor->OnItem(path.c_str(), item->size, this);
            if (generation != m_generation) break;
        }
        return true;
    });
}

bool CGarbageInfo::Explain(IExplanationVisitor* visitor) {
    if (!visitor) return false;
    return NoThrow(false, [&] {
        const auto keepAlive = CReference<CGarbageInfo>::Share(this);
        CExplanation out(*visitor);
        if (!m_released) ExplainTo(out);
        return !out.Stopped();
    });
}

// What it looks at, then the actions in the order of Clean.
void CGarbageInfo::ExplainTo(CExplanation& out) {
    ExplainScope(out);
    if (EmptyProc) out.Action(ActionProcedure, {}, m_emptyProcName);
    if (IsRegistry)
        WalkRegistry(WhatToRemove(), out);
    else if (m_shellItem)
        ExplainShell(out);
}

void CGarbageInfo::ExplainScope(CExplanation& out) const {
    if (IsRegistry) return ExplainKey(out);
    if (m_shellItem && !UseShellBrowse) return out.Scope(ScopeShellFolder, m_shellItem->GetInfo().szDisplayName);
    if (Path.empty()) return;
    if (m_shellItem) return out.Scope(ScopeShellItems, Path);
    IsFolder ? ExplainFolder(out) : out.Scope(ScopeFile, Path);
}

void CGarbageInfo::ExplainKey(CExplanation& out) const {
    if (!RootKey || Path.empty()) return;
    if (DelKey()) return out.Scope(ScopeKey, KeyText(RootKey, Path), {}, ScopeDeletesKey);
    out.Scope(ScopeKey, KeyText(RootKey, Path), Iteration ? Filter : CString(), FlagIf(Iteration, ScopeBelow));
    for (const CString& name : ValueNames())
        out.Scope(ScopeValue, name);
}

void CGarbageInfo::ExplainFolder(CExplanation& out) const {
    if (LoopPath && LoopSteps.empty()) return;  // looks at nothing
    out.Scope(ScopeFolder, Path, Filter,
              FlagIf(Iteration, ScopeBelow) | FlagIf(SelfExclude && !LoopPath, ScopeNotItself));
    for (const LoopStep& step : LoopSteps)
        out.Scope(ScopeStep, step.path, step.addPath);
    for (const CString& name : TerminalPaths)
        out.Scope(ScopeEnd, name, {}, FlagIf(ExactMatch, ScopeExact));
    for (const CString& token : ExcludeFilters)
        out.Scope(ScopeKeptFiles, token);
    for (const ExcludePathEntry& entry : ExcludePaths)
        out.Scope(ScopeKeptFolder, entry.path, {},
                  FlagIf(entry.exactMatch, ScopeExact) | FlagIf(!entry.iteration, ScopeBelow));
}

void CGarbageInfo::ExplainShell(CExplanation& out) {
    if (m_shellItem->IsRecycleBin()) return out.EmptyBin();
    uint64_t all = 0;
    uint64_t silent = 0;
    {
        const CLockGuard guard(m_lock);
        for (const CFoundItems::FoundItem& item : m_found) {
            ++all;
            if (item.Path().empty()) ++silent;
        }
    }
    if (!UseShellBrowse)
        out.Action(ActionLeaveFolder, m_shellItem->GetInfo().szDisplayName, {}, all);
    else if (silent > 0)
        out.Action(ActionShellItems, Path, {}, silent);
}

RegistryRule CGarbageInfo::WhatToRemove() const {
    return {.root = RootKey,
            .keyPath = Path,
            .subKeyFilter = Filter,
            .iteration = Iteration,
            .deleteKey = DelKey(),
            .valueNames = ValueNames()};
}

bool CGarbageInfo::Clean(uint64_t a, uint64_t b, uint64_t c) {
    return NoThrow(true, [&] {
        if (m_released) return true;
        // What was found is deleted whatever it answers.
        if (EmptyProc) EmptyProc->Run(a, b, c);
        if (IsRegistry) {
            // The host is not told what a registry rule removes.
            CleanRegistry(WhatToRemove());
            return true;
        }
        return m_shellItem && !UseShellBrowse ? EmptyShellFolder() : CleanFound();
    });
}

bool CGarbageInfo::CleanFound() {
    const CLockGuard guard(m_lock);
    uint32_t generation = m_generation;
    const auto apps = CAppInfoManager::GetInstance();
    CString path, literal;  // outlive a list that the host's notification empties
    bool goOn = true;
    for (auto item = m_found.begin(); goOn && item != m_found.end();) {
        // The host's own files are never deleted: they stay listed and are not reported. Without a manager any file may
        // be one of them.
        if (!apps || apps->IsInHostFolder(item->Path())) {
            ++item;
            continue;
        }
        path = item->Path();
        literal = item->LiteralPath();
        const uint64_t size = item->size;
        const CItemIdList itemId = std::move(item->itemId);  // likewise: the shell may let messages in meanwhile
        const bool deleted =
            m_shellItem ? m_shellItem->InvokeDelete(itemId.get()) : DeleteFoundFile(literal.empty() ? path : literal);
        if (!m_shellItem || !path.empty()) goOn = ReportEmptied(path, &size, CategoryValue(), deleted, 1);
        if (generation != m_generation) break;
        // Deleted or not: the next clean does not try it again, while the size of what is left stays in the totals.
        item = m_found.Erase(item);
        generation = ++m_generation;
    }
    return goOn;
}

// One report for everything, the rule's total as its size.
bool CGarbageInfo::EmptyShellFolder() {
    // False for a folder other than the bin, which is left alone; true for a bin even if it could not be emptied.
    const bool emptied = m_shellItem->EmptyRecycleBin();
    const uint64_t size = GetTotalSize();  // a copy: on its way up the size must not change under the levels
    const CLockGuard guard(m_lock);
    const uint32_t generation = m_generation;
    const auto count = static_cast<uint32_t>(m_found.Count());
    const bool goOn = ReportEmptied(CString(), &size, CategoryValue(), emptied, count);
    if (generation != m_generation) return goOn;
    m_found.Clear();
    ++m_generation;
    return goOn;
}

// Emptied folders remain. No attribute is cleared, so the system may refuse a read-only file.
bool CGarbageInfo::DeleteFoundFile(const CString& path) {
    if (DeleteFileW(path.c_str())) return true;
    // No right opens a file that is in use.
    if (GetLastError() == ERROR_SHARING_VIOLATION) return false;
    return RetryDelete(path);
}

bool CGarbageInfo::RetryDelete(const CString& path) {
    if (!QueryUpgradeMode()) return false;
    // The second try tells whether it helped.
    UnlockPath(path);
    return DeleteFileW(path.c_str()) != FALSE;
}

uint64_t CGarbageInfo::CategoryValue() const noexcept {
    return reinterpret_cast<uint64_t>(m_category);
}

template class CGatherProc<CGarbageInfo, CGarbageInfo>;
template class CGatherCheckProc<IGarbageCatagory, IGarbageInfo, IGarbageInfo>;
