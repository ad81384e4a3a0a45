#include "host/console/runview.h"

#include "host/common/sizetext.h"
#include "host/common/texts.h"

CRunView::CRunView(CConsole& console, const CCancel& cancel, bool listItems) noexcept
    : m_console(console),
      m_cancel(cancel),
      m_listItems(listItems),
      m_progress(console.err, /*hidden=*/listItems && console.out.IsTerminal()) {}

void CRunView::Enter(IAppCatagory& category) {
    m_progress.Enter(category.GetInfo()->NameText);
}

void CRunView::Enter(IAppGarbageInfo& app) {
    m_application = app.GetInfo()->NameText;
    m_progress.Enter(m_application);
}

void CRunView::Enter(IGarbageCatagory& category) {
    m_progress.Enter(m_application + L": " + category.GetInfo()->NameText);
}

void CRunView::Report(const wchar_t* path, const Amount& amount, ItemState state, IGarbageCatagory& category) {
    m_progress.Count(amount);
    if (m_listItems) List(path, amount, state, category);
}

void CRunView::List(const wchar_t* path, const Amount& amount, ItemState state, IGarbageCatagory& category) {
    if (&category != m_listedCategory) m_console.out.Line(m_application + L": " + category.GetInfo()->NameText);
    m_listedCategory = &category;
    const std::wstring item = *path ? path : Text(IDS_ALL_OF_IT, {ItemCount(amount.items)});
    m_console.out.Line(L"    " + StateText(state) + L"  " + item + L"  " + std::to_wstring(amount.bytes));
}

ExitStatus CRunView::Finish(CRunObserver::Outcome outcome) {
    m_progress.Remove();
    if (outcome == CRunObserver::Outcome::Done) return ExitStatus::Done;
    const bool stopped = outcome == CRunObserver::Outcome::Stopped;
    m_console.Complain(Text(stopped ? IDS_RUN_STOPPED : IDS_RUN_GAVE_UP));
    return stopped ? ExitStatus::Stopped : ExitStatus::Failed;
}
