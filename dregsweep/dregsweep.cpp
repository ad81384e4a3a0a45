#include "dregsweep/dregsweep.h"

#include <objbase.h>
#include <tinyxml.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "dregsweep/companion.h"
#include "dregsweep/progressranges.h"
#include "dregsweep/redirection.h"
#include "dregsweep/restoreprivilege.h"
#include "sysservices/appinfomanager.h"
#include "sysservices/nothrow.h"
#include "sysservices/privilegecontext.h"
#include "sysservices/trace.h"
#include "sysservices/xmldocument.h"
#include "tree/residtexttable.h"
#include "tree/volumeprocimpl.h"

namespace {

// Who looks for "[Dregsweep] " misses these: they have no blank behind the bracket.
constexpr const wchar_t* kCancelInStep = L"[Dregsweep]User cancel in process step notify!,%S,%d";
constexpr const wchar_t* kCancelInProgress = L"[Dregsweep]User cancel in process notify!,%S,%d";
constexpr const wchar_t* kCancelInGather = L"[Dregsweep]User cancel in gather proc!,%S,%d";
constexpr const wchar_t* kCancelInEmpty = L"[Dregsweep]User cancel in empty proc!,%S,%d";

// A plain prefix, folding A to Z only: "C:\Temp" admits "C:\TempFiles".
bool BeginsWith(const CString& path, const CString& prefix) noexcept {
    if (path.size() < prefix.size()) return false;
    return std::equal(prefix.begin(), prefix.end(), path.begin(),
                      [](wchar_t a, wchar_t b) { return FoldAscii(a) == FoldAscii(b); });
}

// Sent before anything is cleaned: an event tells of a selection only.
void SendUsageEvents(const std::vector<CReference<CAppCatagory>>& categories) noexcept {
    constexpr uint32_t kCategoryOfType0 = 0x11003;
    constexpr uint32_t kCategoryOfType2 = 0x11004;
    for (const auto& category : categories) {
        if (category->GetState() == SelectionNone) continue;
        if (category->CatagoryType == 0) SendUsageEvent(kCategoryOfType0);
        if (category->CatagoryType == 2) SendUsageEvent(kCategoryOfType2);
    }
}

uint32_t CountSelected(const std::vector<CReference<CAppCatagory>>& categories) {
    return static_cast<uint32_t>(std::count_if(categories.begin(), categories.end(), [](const auto& category) {
        return category->GetState() != SelectionNone;
    }));
}

}  // namespace

// Makes a run the innermost one for the length of the scope.
class CDregsweep::CRunScope {
public:
    CRunScope(Run*& slot, Run& run) noexcept : m_slot(slot), m_outer(std::exchange(slot, &run)) {}
    ~CRunScope() { m_slot = m_outer; }
    CRunScope(const CRunScope&) = delete;
    CRunScope& operator=(const CRunScope&) = delete;

private:
    Run*& m_slot;
    Run* const m_outer;
};

CDregsweep::CDregsweep(bool upgradeMode) : CVolumeProc(nullptr), m_upgradeMode(upgradeMode) {
    // Never balanced and the result not looked at: the host's thread keeps its apartment.
    (void)CoInitialize(nullptr);
    // Where this fails nothing can be unlocked later; everything else works.
    if (m_upgradeMode) EnablePrivileges(RestoreContext());
}

CDregsweep::~CDregsweep() {
    CDregsweep::Uninit();
    // One list for the whole process: an engine that is still alive loads it again on its next use.
    CAppInfoManager::ReleaseInstance();
}

uint32_t CDregsweep::AddRef() noexcept {
    ++m_outsideReferences;
    return IEUObject::AddRef();
}

uint32_t CDregsweep::Release() noexcept {
    if (--m_outsideReferences == 0) {
        // Only its own categories hold it besides: let go of them, also of those that a failed Init has left.
        CDregsweep::Uninit();
        m_categories.Release();
    }
    return IEUObject::Release();
}

IAppCatagory* CDregsweep::GetFirstChild() {
    return m_initialised ? m_categories.First() : nullptr;
}

IAppCatagory* CDregsweep::GetNextChild(IAppCatagory* current) {
    return m_initialised ? m_categories.Next(current) : nullptr;
}

uint64_t CDregsweep::Init(const wchar_t* configPath, const wchar_t* textPath, ITextSelector* selector) {
    if (m_initialised || !configPath || !textPath) return 0;
    return NoThrow(kDregsweepConfigFailed, [&] { return DoInit(configPath, textPath, selector); });
}

uint64_t CDregsweep::DoInit(const wchar_t* configPath, const wchar_t* textPath, ITextSelector* selector) {
    if (const uint64_t code = StartCompanion()) return code;
    m_configPath = configPath;
    if (const auto apps = CAppInfoManager::GetInstance()) apps->Load();
    if (const uint64_t code = LoadConfigFile()) return code;
    m_initialised = true;
    EnableRestorePrivilege();
    // The result is not used: it never tells success.
    ChangeResID(textPath, selector);
    return 0;
}

uint64_t CDregsweep::StartCompanion() {
    // The one of an earlier Init that failed goes first.
    m_companion = {};
    m_companion = CReference<ICompanionObject>(LoadFactoryExport(kTallyhostLibrary, /*exportName=*/nullptr));
    if (!m_companion) return 0;
    // One that throws counts as ready.
    const uint64_t code = NoThrow<uint64_t>(0, [this] { return m_companion->Start(); });
    if (code != 0) DregsweepTrace(L"[Dregsweep] Init fail %d", GetLastError());
    return code;
}

uint64_t CDregsweep::LoadConfigFile() {
    TiXmlDocument document;
    // A file that is missing or broken is no error: the engine becomes ready without a category.
    if (!LoadXmlDocument(m_configPath.c_str(), document)) return 0;
    return LoadConfig(document.FirstChildElement()) ? 0 : kDregsweepConfigFailed;
}

bool CDregsweep::LoadConfig(const TiXmlElement* root) {
    const bool loaded = NoThrow(false, [&] { return root && LoadCategories(*root); });
    if (!loaded) DregsweepTrace(L"[Dregsweep] LoadConfig fail");
    return loaded;
}

bool CDregsweep::LoadCategories(const TiXmlElement& root) {
    // The one name that is not written "Catagory", compared with regard to case; foreign elements are skipped.
    constexpr std::string_view kTag = "AppCategoryInfo";
    // A root without any child element fails, one with foreign elements only does not.
    if (!root.FirstChildElement()) return false;
    for (const TiXmlElement* child = root.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (child->Value() != kTag) continue;
        // The categories before a failing one stay in the list, ahead of those of a later Init.
        if (!m_categories.LoadAndAppend(new CAppCatagory(this, this), child)) return false;
    }
    return true;
}

uint64_t CDregsweep::Uninit() {
    if (!m_initialised) return 0;
    CReference<ICompanionObject> companion;  // foreign code: it goes when the lock has been given up
    const CLockGuard guard(m_categories.Lock());
    m_categories.Release();
    ++m_tree;
    companion = std::move(m_companion);
    m_initialised = false;
    // The allowed paths stay, and the totals until the next gather.
    return 0;
}

uint64_t CDregsweep::ChangeResID(const wchar_t* textPath, ITextSelector* selector) {
    if (!textPath) return kDregsweepChangeResID;
    const uint64_t code = NoThrow(kDregsweepChangeResID, [&] { return LoadTexts(textPath, selector); });
    // Never 0 and traced every time, also when every category took its text.
    DregsweepTrace(L"[Dregsweep] ChangeResID fail 0x%x,%d", static_cast<unsigned>(code), GetLastError());
    return code;
}

uint64_t CDregsweep::LoadTexts(const wchar_t* textPath, ITextSelector* selector) {
    const auto keepAlive = CReference<CDregsweep>::Share(this);  // the selector is the host's
    if (!m_initialised) return kDregsweepChangeResID;
    TiXmlDocument document;
    if (!LoadXmlDocument(textPath, document)) return kDregsweepChangeResID;
    const TiXmlElement* root = document.FirstChildElement();
    const TiXmlElement* tableElement = root ? root->FirstChildElement("Dregsweep") : nullptr;
    if (!tableElement) return kDregsweepNoTextTable;
    const CResIdTextTable table(*tableElement);
    m_categories.VisitLocked([&](CAppCatagory& category) {
        category.ChangeResID(table, selector);
        return true;
    });
    return kDregsweepChangeResID;
}

void CDregsweep::AddAllowedPath(const wchar_t* prefix) {
    if (!prefix) return;
    const CLockGuard guard(m_pathLock);
    const bool stored = NoThrow(false, [&] {
        m_allowedPaths.emplace_back(prefix);
        return true;
    });
    // Without the only prefix everything would be allowed.
    if (!stored) m_allowedPathLost = true;
}

void CDregsweep::ClearAllowedPaths() {
    const CLockGuard guard(m_pathLock);
    m_allowedPaths.clear();
    m_allowedPathLost = false;
}

bool CDregsweep::IsPathAllowed(const CString& path) {
    const CLockGuard guard(m_pathLock);
    if (m_allowedPathLost) return false;
    return m_allowedPaths.empty()
           || std::any_of(m_allowedPaths.begin(), m_allowedPaths.end(),
                          [&](const CString& prefix) { return BeginsWith(path, prefix); });
}

bool CDregsweep::Gather(IDregsweepCallback* callback) {
    return NoThrow(false, [&] { return RunGather(callback); });
}

bool CDregsweep::RunGather(IDregsweepCallback* callback) {
    const auto keepAlive = CReference<CDregsweep>::Share(this);
    // Before the callback is stored: a second run from another thread waits here for the first.
    const CLockGuard guard(m_categories.Lock());
    if (!m_initialised) return true;
    Run run{callback, m_tree};
    const CRunScope scope(m_run, run);
    // A gather of nothing must not leave the totals of the one before.
    ZeroVolume();
    ResetForGather();
    TellCompanionOfRun();
    const CRedirectionOff redirection;

    const Categories categories = ShareCategories();
    CProgressRanges ranges(CountSelected(categories));
    for (const auto& category : categories) {
        if (run.stopped || IsOver(run)) break;
        if (category->GetState() == SelectionNone) continue;
        // One by one: a gather that is stopped does not mark the categories behind.
        category->Mark(reinterpret_cast<uint64_t>(callback));
        const ProgressRange range = ranges.Next();
        category->SetRange(range.begin, range.end);
        category->RunGather();
    }
    return !run.stopped;
}

bool CDregsweep::Clean(IDregsweepCallback* callback) {
    DregsweepTrace(L"[Dregsweep] ------ start garbage clear proc ------");
    const bool goOn = NoThrow(false, [&] { return RunClean(callback); });
    DregsweepTrace(L"[Dregsweep] ------ end garbage clear proc ------");
    return goOn;
}

bool CDregsweep::RunClean(IDregsweepCallback* callback) {
    const auto keepAlive = CReference<CDregsweep>::Share(this);
    const CLockGuard guard(m_categories.Lock());
    if (!m_initialised) return true;
    std::optional<CRedirectionOff> redirection;  // reverted only after the callback is gone
    Run run{callback, m_tree};
    const CRunScope scope(m_run, run);
    PrepareForClean();
    // Unlike in a gather, the companion is told with redirection off.
    redirection.emplace();
    TellCompanionOfRun();

    const Categories categories = ShareCategories();
    const uint32_t selected = CountSelected(categories);
    SendUsageEvents(categories);
    if (selected == 0) return true;
    CProgressRanges ranges(selected);
    for (const auto& category : categories) {
        if (run.stopped || IsOver(run)) break;
        if (category->GetState() != SelectionNone) {
            const ProgressRange range = ranges.Next();
            category->SetRange(range.begin, range.end);
        }
        // Unselected categories are visited too: they skip their unselected content themselves. Nothing is marked here:
        // that would zero the totals which each deleted item lowers.
        category->RunClean();
    }
    return !run.stopped;
}

void CDregsweep::TellCompanionOfRun() noexcept {
    // Held, in case the companion makes the host end the engine.
    const auto companion = CReference<ICompanionObject>::Share(m_companion.get());
    if (!companion) return;
    NoThrow(false, [&] {
        companion->BeginRun();
        return true;
    });
}

CDregsweep::Categories CDregsweep::ShareCategories() {
    Categories categories;
    m_categories.VisitLocked([&](CAppCatagory& category) {
        categories.push_back(CReference<CAppCatagory>::Share(&category));
        return true;
    });
    return categories;
}

// With the category lock held: nothing that is called here reaches the host.
template <class Visit>
void CDregsweep::EachCategory(Visit visit) noexcept {
    if (!m_initialised) return;
    m_categories.VisitLocked([&](CAppCatagory& category) {
        visit(category);
        return true;
    });
}

bool CDregsweep::ResetForGather() {
    EachCategory([](CAppCatagory& category) { category.Reset(); });
    return true;
}

bool CDregsweep::PrepareForClean() {
    EachCategory([](CAppCatagory& category) { category.SetStage(StageReadyToClean); });
    return true;
}

uint64_t CDregsweep::SetAllChecked(bool checked) {
    EachCategory([checked](CAppCatagory& category) {
        const uint32_t wanted = checked ? SelectionAll : SelectionNone;
        if (category.GetState() == wanted) return;
        category.Toggle();
        // A partly selected category went to none first: once more.
        if (checked && category.GetState() != SelectionAll) category.Toggle();
    });
    return 0;
}

uint64_t CDregsweep::ClearTotals() {
    if (!m_initialised) return 0;
    const CLockGuard guard(m_categories.Lock());
    ZeroVolume();
    EachCategory([](CAppCatagory& category) { category.ResetAll(); });
    return 0;
}

// True to go on: nobody is asked between runs. Whatever the host throws counts as a stop.
template <class Call>
bool CDregsweep::AskHost(const wchar_t* cancelTrace, Call call, std::source_location where) noexcept {
    if (!m_run) return true;
    if (IsOver(*m_run)) return false;
    if (!m_run->callback) return true;
    if (NoThrow(false, [&] { return call(*m_run->callback); })) return true;
    m_run->stopped = true;
    DregsweepTrace(cancelTrace, __FILE_NAME__, static_cast<int>(where.line()));
    return false;
}

bool CDregsweep::HostNotify1(uint64_t arg) {
    return AskHost(kCancelInStep, [&](IDregsweepCallback& host) { return host.StepNotify1(arg); });
}

bool CDregsweep::HostNotify2(uint64_t arg) {
    return AskHost(kCancelInStep, [&](IDregsweepCallback& host) { return host.StepNotify2(arg); });
}

bool CDregsweep::HostNotify3(uint64_t arg) {
    return AskHost(kCancelInStep, [&](IDregsweepCallback& host) { return host.StepNotify3(arg); });
}

bool CDregsweep::ReportProgress(uint32_t begin, uint32_t end) {
    return AskHost(kCancelInProgress, [&](IDregsweepCallback& host) { return host.Progress(begin, end); });
}

bool CDregsweep::ReportFound(const CString& item, const uint64_t* size, uint64_t extra) {
    if (m_run && IsOver(*m_run)) return false;
    AddFound(*size);
    return AskHost(kCancelInGather,
                   [&](IDregsweepCallback& host) { return host.FoundItem(item.c_str(), *size, extra); });
}

// The host is not told the count: a recycle bin is one item to it, however many were in it.
bool CDregsweep::ReportEmptied(const CString& item, const uint64_t* size, uint64_t extra, bool subtract,
                               uint32_t count) {
    if (m_run && IsOver(*m_run)) return false;
    if (subtract) TakeEmptied(*size, count);
    return AskHost(kCancelInEmpty,
                   [&](IDregsweepCallback& host) { return host.EmptiedItem(item.c_str(), *size, extra, subtract); });
}

template class CVolumeProc<CDregsweep>;
