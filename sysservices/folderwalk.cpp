#include "sysservices/folderwalk.h"

#include <string_view>
#include <utility>

namespace {

bool IsSelfOrParent(std::wstring_view name) noexcept {
    return name == L"." || name == L"..";
}

}  // namespace

CFileSearch CFolderWalk::Search(std::wstring_view pattern) const {
    CFoundPath path = m_path;
    path.AppendWritten(pattern);
    return CFileSearch(path.Exact().c_str());
}

void CFolderWalk::Enter(CFileSearch search) {
    m_open.push_back({std::move(search), m_path.Here()});
}

bool CFolderWalk::Next() {
    if (m_open.empty()) return false;
    OpenFolder& folder = m_open.back();
    if (std::exchange(folder.isBegun, true)) folder.search.Next();
    while (folder.search && IsSelfOrParent(folder.search.Entry().cFileName))
        folder.search.Next();
    if (!folder.search) return Leave();
    m_path.Return(folder.place);
    m_path.AppendReturned(folder.search.Entry().cFileName);
    m_isAtEntry = true;
    return true;
}

bool CFolderWalk::Leave() {
    m_isAtEntry = false;
    if (m_open.empty()) return false;
    m_path.Return(m_open.back().place);
    m_open.pop_back();
    return true;
}
