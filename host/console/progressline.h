#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "host/common/amount.h"
#include "host/console/console.h"

// One line of progress, with a bar, that is drawn over and over, on a terminal only; removed at the end of the scope.
class CProgressLine {
public:
    // `out` is used until the end of the scope. `hidden` for a terminal that shows something else.
    CProgressLine(COutput& out, bool hidden) noexcept : m_out(out), m_shown(out.IsTerminal() && !hidden) {}
    ~CProgressLine() { Remove(); }
    CProgressLine(const CProgressLine&) = delete;
    CProgressLine& operator=(const CProgressLine&) = delete;

    // The run has come to `percent` of its way. The engine's ranges overlap: a smaller one than before changes nothing.
    void Reach(unsigned percent);
    // What the run is at now.
    void Enter(std::wstring_view name);
    // One more item, or several at once.
    void Count(const Amount& amount);

    // Takes the line off the terminal; the next change draws it again.
    void Remove() noexcept;

    // The line as it stands, in no more than `columns`.
    std::wstring Text(size_t columns) const;

private:
    void Draw();

    COutput& m_out;
    const bool m_shown;
    unsigned m_percent = 0;
    Amount m_counted;
    std::wstring m_name;
    size_t m_drawnColumns = 0;
    ULONGLONG m_drawnAt = 0;  // milliseconds since the system's start
};
