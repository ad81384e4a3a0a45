#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "dregsweep/idregsweep.h"
#include "host/cancel.h"
#include "host/progressline.h"

// What the host does with the notifications of one run: shows progress, lists items, counts what was deleted, and
// passes on the user's wish to stop.
class CRunObserver final : public IDregsweepCallback {
public:
    // Items go to the standard output, each under its category, as they are reported; they take the place of the
    // progress line where both would share a terminal.
    CRunObserver(CConsole& console, const CCancel& cancel, bool listItems);

    bool StepNotify1(uint64_t node) override;
    bool StepNotify2(uint64_t node) override;
    bool StepNotify3(uint64_t node) override;
    bool Progress(uint32_t begin, uint32_t end) override;
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override;
    bool Reserved() override { return GoOn(); }
    bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) override;

    // Takes the progress line away before something else is printed.
    void Finish() noexcept { m_progress.Remove(); }

    // What was reported as deleted from one garbage category.
    Amount Deleted(IGarbageCatagory& category) const;
    // The items that were reported as not deleted, in order.
    const std::vector<std::wstring>& Refused() const noexcept { return m_refused; }

private:
    bool GoOn() const noexcept { return !m_cancel.Requested(); }
    void List(const wchar_t* what, const std::wstring& path, uint64_t size, uint64_t category);

    CConsole& m_console;
    const CCancel& m_cancel;
    const bool m_listItems;
    CProgressLine m_progress;
    std::wstring m_application;
    uint64_t m_listedCategory = 0;
    std::unordered_map<uint64_t, Amount> m_deleted;  // by the category's pointer, as notifications carry it
    std::vector<std::wstring> m_refused;
};
