#include "rules/garbageinfo.h"

#include <tinyxml.h>

#include "rules/folderscan.h"
#include "rules/location.h"
#include "rules/registryrule.h"
#include "rules/systemversion.h"
#include "sysservices/appinfomanager.h"
#include "sysservices/filesearch.h"
#include "sysservices/nothrow.h"
#include "sysservices/xmlattribute.h"
#include "tree/gathercheckprocimpl.h"
#include "tree/gatherprocimpl.h"
#include "tree/igarbagecatagory.h"

namespace {

constexpr std::wstring_view kListSeparator = L"|";

bool IsChildNamed(const TiXmlElement& child, const char* name) {
    return _stricmp(child.Value(), name) == 0;
}

void AppendLowerCased(std::list<CString>& list, const CString& text) {
    for (const CString& token : Split(text, kListSeparator))
        list.push_back(ToLower(token));
}

}  // namespace

CGarbageInfo::CGarbageInfo(CGarbageCatagory* parent, IGarbageCatagory* category)
    : IGarbageInfo(category),
      CVolumeProc(parent),
      m_category(category) {}

CGarbageInfo::~CGarbageInfo() {
    CGarbageInfo::ClearFound();
}

bool CGarbageInfo::LoadXml(const TiXmlElement* element) {
    LoadSelState(element);
    IsRegistry = ReadInteger(*element, "Registry", 0) == 1;
    if (!IsRegistry) return LoadFileRule(*element);
    // A registry rule reads no attribute of a file rule and always loads, on purpose.
    LoadRegistryRule(*element);
    return true;
}

bool CGarbageInfo::LoadFileRule(const TiXmlElement& element) {
    const bool hasPath = ReadText(element, "Path", Path);
    const int32_t getByReg = ReadInteger(element, "GetByReg", 0);
    if (getByReg == 1) Path = PathFromRegistry(element, Path);
    // Without an attribute of its own the value of "GetByReg" is taken over, on purpose, be it 1 or 2.
    IsFolder = ReadInteger(element, "IsFolder", getByReg) != 0;
    Iteration = ReadInteger(element, "Iteration", 0) == 1;
    FolderIndex = ReadInteger(element, "FolderIndex", -1);
    if (IsWow64()) ReadText(element, "FolderX86EnvDir", FolderEnvDir);
    if (FolderEnvDir.empty()) ReadText(element, "FolderEnvDir", FolderEnvDir);
    Filter = L"*";
    ReadText(element, "Filter", Filter);
    CString excludeFilter;
    ReadText(element, "ExcludeFilter", excludeFilter);
    // As written, while the other lists are lower-cased, on purpose.
    for (CString& token : Split(excludeFilter, kListSeparator))
        ExcludeFilters.insert(std::move(token));
    LoopPath = ReadInteger(element, "LoopPath", 0) == 1;
    ExcludePath = ReadInteger(element, "ExcludePath", 0) == 1;
    SelfExclude = ReadInteger(element, "SelfExclude", 0) == 1;
    UseShellBrowse = ReadInteger(element, "UseShellBrowse", 0) != 0;

    // Without a base folder the rule loads if "Path" is there at all, and its children are never read, on purpose.
    if (FolderIndex == -1 && FolderEnvDir.empty()) return hasPath;
    return ResolveLocation(element);
}

void CGarbageInfo::LoadRegistryRule(const TiXmlElement& element) {
    m_rootKey = RootKeyByName(element.Attribute("RootKey"));
    ReadText(element, "KeyPath", Path);
    ReadText(element, "Filter", Filter);
    Iteration = ReadInteger(element, "Iteration", 0) == 1;
    DelKey() = ReadInteger(element, "DelKey", 0) == 1;
    CString values;
    ReadText(element, "Value", values);
    AppendLowerCased(ValueNames(), values);
}

bool CGarbageInfo::ResolveLocation(const TiXmlElement& element) {
    CString base = BaseFolder(FolderIndex, FolderEnvDir);
    if (base.empty()) return false;
    if (!Path.empty() && base.back() != L'\\') base += L'\\';
    Path = base + Path;
    // Whether the folder is there or not, on purpose: only the scan finds out.
    if (m_category) m_category->SetAppPresent(true);
    if (LoopPath) LoadLoopPaths(element);
    if (ExcludePath) LoadExcludePaths(element);
    return true;
}

void CGarbageInfo::LoadLoopPaths(const TiXmlElement& element) {
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (IsChildNamed(*child, "LoopPath")) LoadLoopPath(*child);
    }
}

void CGarbageInfo::LoadLoopPath(const TiXmlElement& child) {
    CString terminals;
    if (ReadText(child, "TerminalPath", terminals)) {
        AppendLowerCased(TerminalPaths, terminals);
        // The last such child decides for all of them, on purpose.
        ExactMatch = ReadInteger(child, "ExactMatch", 0) == 1;
        return;
    }
    LoopStep step;
    if (!ReadText(child, "Path", step.path)) return;
    ReadText(child, "AddPath", step.addPath);
    m_loopSteps.push_back(std::move(step));
}

void CGarbageInfo::LoadExcludePaths(const TiXmlElement& element) {
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
        CString path;
        if (!IsChildNamed(*child, "ExcludePath") || !ReadText(*child, "Path", path)) continue;
        const bool iteration = ReadInteger(*child, "Iteration", 0) == 1;
        const bool exactMatch = ReadInteger(*child, "ExactMatch", 0) == 1;
        m_excludePaths.push_back({ToLower(path), exactMatch, iteration});
    }
}

// Three attributes only, and the resolved path beside the folder index, on purpose: a saved tree is for display.
bool CGarbageInfo::SaveXml(TiXmlElement* parentElement) {
    TiXmlElement* element = parentElement->LinkEndChild(new TiXmlElement("GarbageInfo"))->ToElement();
    element->SetAttribute("Path", WideToUtf8(Path).c_str());
    element->SetAttribute("IsFolder", IsFolder ? 1 : 0);
    element->SetAttribute("FolderIndex", FolderIndex);
    return true;
}

bool CGarbageInfo::Gather() {
    return NoThrow(true, [this] { return Scan(); });
}

bool CGarbageInfo::Scan() {
    if (IsRegistry || Path.empty()) return true;
    ClearFound();
    ZeroVolume();
    return IsFolder ? ScanFolders() : ScanFile();
}

bool CGarbageInfo::ScanFolders() {
    CFolderScan scan(*this);
    if (!LoopPath) return scan.ScanFolder(Path, !SelfExclude);
    // Terminal paths without loop steps find nothing, and SelfExclude has no say over the folders of a loop, on
    // purpose.
    if (m_loopSteps.empty()) return true;
    for (const CString& folder : ExpandLoop(Path, m_loopSteps, {TerminalPaths, ExactMatch})) {
        if (!scan.ScanFolder(folder, /*withFiles=*/true)) return false;
    }
    return true;
}

// One match only, listed under the rule's path with its wildcards, on purpose. Such an item cannot be deleted.
bool CGarbageInfo::ScanFile() {
    const CFileSearch search(Path.c_str());
    return !search || RecordFound(Path, EntrySize(search.Entry()));
}

bool CGarbageInfo::RecordFound(const CString& path, uint64_t size) {
    {
        const CLockGuard guard(m_lock);
        m_found.push_back({path, size});
    }
    return ReportFound(path, &size, CategoryValue());
}

bool CGarbageInfo::IsExcludedPath(std::wstring_view folderPath, std::wstring_view name, bool& onlyOwnFiles) const {
    if (m_excludePaths.empty()) return false;
    const ExcludePathEntry* match = FindExcludePath(m_excludePaths, folderPath, ToLower(name));
    onlyOwnFiles = match && match->iteration;
    return match != nullptr;
}

void CGarbageInfo::ClearFound() {
    const CLockGuard guard(m_lock);
    m_found.clear();
    ++m_generation;
    m_secondFilters.clear();
}

void CGarbageInfo::EnumFound(IVisitor* visitor) {
    if (!visitor) return;
    NoThrow(false, [&] {
        const CLockGuard guard(m_lock);
        const uint32_t generation = m_generation;
        CString path;  // outlives the item when the visitor has the rule scanned anew
        for (auto item = m_found.begin(); item != m_found.end(); ++item) {
            if (item->path.empty()) continue;
            path = item->path;
            visitor->OnItem(path.c_str(), item->size, this);
            if (generation != m_generation) break;
        }
        return true;
    });
}

bool CGarbageInfo::Clean(uint64_t /*a*/, uint64_t /*b*/, uint64_t /*c*/) {
    return NoThrow(true, [this] {
        if (!IsRegistry) return CleanFiles();
        // Nothing is reported for a registry rule, on purpose.
        CleanRegistry({m_rootKey, Path, Filter, Iteration, DelKey(), ValueNames()});
        return true;
    });
}

bool CGarbageInfo::CleanFiles() {
    const CLockGuard guard(m_lock);
    const uint32_t generation = m_generation;
    const auto apps = CAppInfoManager::GetInstance();
    bool goOn = true;
    for (auto item = m_found.begin(); goOn && item != m_found.end();) {
        // The host's own files are never deleted: they stay listed and are not reported, on purpose. Without a manager
        // any file may be one of them.
        if (!apps || apps->IsInHostFolder(item->path)) {
            ++item;
            continue;
        }
        const FoundItem current = *item;  // outlives a list that the host's notification empties
        goOn = ReportProcessed(current.path, current.size, DeleteFound(current.path));
        if (generation != m_generation) break;
        // Removed after the report and whatever became of it, on purpose: it is not tried again.
        item = m_found.erase(item);
    }
    return goOn;
}

// Folders are never removed and no attribute is cleared, on purpose.
bool CGarbageInfo::DeleteFound(const CString& path) {
    return DeleteFileW(path.c_str()) != FALSE;
}

bool CGarbageInfo::ReportProcessed(const CString& path, uint64_t size, bool deleted) {
    return ReportEmptied(path, &size, CategoryValue(), deleted, 1);
}

uint64_t CGarbageInfo::CategoryValue() const noexcept {
    return reinterpret_cast<uint64_t>(m_category);
}

template class CGatherProc<CGarbageInfo, CGarbageInfo>;
template class CGatherCheckProc<IGarbageCatagory, IGarbageInfo, IGarbageInfo>;
