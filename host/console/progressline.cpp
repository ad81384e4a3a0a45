#include "host/console/progressline.h"

#include <algorithm>

#include "host/common/printable.h"
#include "host/common/sizetext.h"
#include "host/console/columns.h"

void CProgressLine::Reach(unsigned percent) {
    if (percent <= m_percent) return;
    m_percent = std::min(percent, 100U);
    m_drawnAt = 0;  // worth showing at once: it cannot happen often
    Draw();
}

void CProgressLine::Enter(std::wstring_view name) {
    m_name = Printable(name);
    Draw();
}

void CProgressLine::Count(const Amount& amount) {
    m_counted += amount;
    Draw();
}

std::wstring CProgressLine::Text(size_t columns) const {
    constexpr size_t kBar = 20;
    const size_t full = m_percent * kBar / 100;
    const std::wstring bar = L"[" + std::wstring(full, L'#') + std::wstring(kBar - full, L'.') + L"] ";
    const std::wstring text = bar + PadLeft(std::to_wstring(m_percent), 3) + L"%  " + ItemCount(m_counted.items) + L", "
                              + ReadableSize(m_counted.bytes) + L"  " + m_name;
    return std::wstring(Shorten(text, columns));
}

void CProgressLine::Draw() {
    // More often than this nobody can read, and a console is slow.
    constexpr ULONGLONG kPause = 100;
    if (!m_shown || GetTickCount64() - m_drawnAt < kPause) return;
    // The last column stays free: writing there would begin a new line.
    const std::wstring text = Text(m_out.Width() - 1);
    m_out.Write(L"\r" + PadRight(text, m_drawnColumns));
    m_drawnColumns = Columns(text);
    m_drawnAt = GetTickCount64();
}

void CProgressLine::Remove() noexcept {
    if (m_drawnColumns == 0) return;
    try {
        m_out.Write(L"\r" + std::wstring(m_drawnColumns, L' ') + L"\r");
    } catch (const std::bad_alloc&) {
        // A line that stays on the screen is no harm.
    }
    m_drawnColumns = 0;
}
