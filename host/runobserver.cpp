#include "host/runobserver.h"

namespace {

// A node travels through the notifications as a number.
template <class Node>
std::wstring NameOf(uint64_t node) {
    return reinterpret_cast<Node*>(node)->GetInfo()->NameText;
}

// A rule that was emptied at once, such as a recycle bin, reports no path.
std::wstring ShownPath(const wchar_t* path) {
    return *path ? path : L"(everything that the rule found)";
}

}  // namespace

CRunObserver::CRunObserver(CConsole& console, const CCancel& cancel, bool listItems)
    : m_console(console),
      m_cancel(cancel),
      m_listItems(listItems),
      m_progress(console.err, /*hidden=*/listItems && console.out.IsTerminal()) {}

bool CRunObserver::StepNotify1(uint64_t node) {
    m_progress.Enter(m_application + L": " + NameOf<IGarbageCatagory>(node));
    return GoOn();
}

bool CRunObserver::StepNotify2(uint64_t node) {
    m_application = NameOf<IAppGarbageInfo>(node);
    m_progress.Enter(m_application);
    return GoOn();
}

bool CRunObserver::StepNotify3(uint64_t node) {
    m_progress.Enter(NameOf<IAppCatagory>(node));
    return GoOn();
}

bool CRunObserver::Progress(uint32_t begin, uint32_t /*end*/) {
    m_progress.Reach(begin);
    return GoOn();
}

bool CRunObserver::FoundItem(const wchar_t* path, uint64_t size, uint64_t category) {
    m_progress.Count(size);
    List(L"found", path, size, category);
    return GoOn();
}

bool CRunObserver::EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) {
    m_progress.Count(size);
    if (removed) {
        m_deleted[category] += {1, size};
    } else {
        m_refused.push_back(ShownPath(path));
    }
    List(removed ? L"deleted" : L"not deleted", ShownPath(path), size, category);
    return GoOn();
}

void CRunObserver::List(const wchar_t* what, const std::wstring& path, uint64_t size, uint64_t category) {
    if (!m_listItems) return;
    if (category != m_listedCategory) m_console.out.Line(m_application + L": " + NameOf<IGarbageCatagory>(category));
    m_listedCategory = category;
    m_console.out.Line(L"    " + std::wstring(what) + L"  " + path + L"  " + std::to_wstring(size));
}

Amount CRunObserver::Deleted(IGarbageCatagory& category) const {
    const auto entry = m_deleted.find(reinterpret_cast<uint64_t>(&category));
    return entry == m_deleted.end() ? Amount() : entry->second;
}
