#include "sysservices/folderwalk.h"

namespace {

bool IsSelfOrParent(const wchar_t* name) noexcept {
    return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

bool IsPassedOver(const WIN32_FIND_DATAW& entry, CFolderWalk::Entries entries) noexcept {
    const bool isFolder = entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    return (!isFolder && entries == CFolderWalk::Entries::Folders) || IsSelfOrParent(entry.cFileName);
}

}  // namespace

const CFoundPath& CFolderWalk::Path() const {
    if (m_isAtEntry && !std::exchange(m_hasName, true)) m_path.AppendReturned(Entry().cFileName);
    return m_path;
}

CFileSearch CFolderWalk::Search(std::wstring_view pattern) const {
    if (!Path().Literal().empty()) {
        CFoundPath path = m_path;
        path.AppendWritten(pattern);
        return CFileSearch(path.Exact().c_str());
    }
    // A text takes the pattern as it is, and gives it back.
    const CFoundPath::Place folder = m_path.Here();
    m_path.AppendWritten(pattern);
    CFileSearch search(m_path.Exact().c_str());
    m_path.Return(folder);
    return search;
}

void CFolderWalk::Enter(CFileSearch search, Entries entries) {
    m_open.push_back({std::move(search), Path().Here(), entries});
    m_isAtEntry = false;
}

bool CFolderWalk::Next() {
    if (m_open.empty()) return false;
    OpenFolder& folder = m_open.back();
    if (std::exchange(folder.isBegun, true)) folder.search.Next();
    while (folder.search && IsPassedOver(folder.search.Entry(), folder.entries))
        folder.search.Next();
    if (!folder.search) return Leave();
    if (m_hasName || !m_isAtEntry) m_path.Return(folder.place);
    m_isAtEntry = true;
    m_hasName = false;
    return true;
}

bool CFolderWalk::Leave() {
    m_isAtEntry = false;
    m_hasName = false;
    if (m_open.empty()) return false;
    m_path.Return(m_open.back().place);
    m_open.pop_back();
    return true;
}
