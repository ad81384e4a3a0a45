#pragma once

#include <string>

#include "host/common/irunview.h"
#include "host/common/runobserver.h"
#include "host/console/cancel.h"
#include "host/console/console.h"
#include "host/console/exitstatus.h"
#include "host/console/progressline.h"

// Shows one run on the console: its progress, and each item when that is wished.
class CRunView final : public IRunView {
public:
    // Items go to the standard output, each under its category, as they are reported; they take the place of the
    // progress line where both would share a terminal.
    CRunView(CConsole& console, const CCancel& cancel, bool listItems) noexcept;

    void Enter(IAppCatagory& category) override;
    void Enter(IAppGarbageInfo& app) override;
    void Enter(IGarbageCatagory& category) override;
    void Reach(uint32_t percent) override { m_progress.Reach(percent); }
    void Report(const wchar_t* path, const Amount& amount, ItemState state, IGarbageCatagory& category) override;
    bool StopRequested() const noexcept override { return m_cancel.Requested(); }

    // Ends the showing, and tells on the error output when the run did not go to its end.
    ExitStatus Finish(CRunObserver::Outcome outcome);

private:
    void List(const wchar_t* path, const Amount& amount, ItemState state, IGarbageCatagory& category);

    CConsole& m_console;
    const CCancel& m_cancel;
    const bool m_listItems;
    CProgressLine m_progress;
    std::wstring m_application;
    const IGarbageCatagory* m_listedCategory = nullptr;
};
