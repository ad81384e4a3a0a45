#include "host/console/output.h"

#include <algorithm>

#include "host/common/printable.h"
#include "sysservices/text.h"

bool IsConsole(HANDLE handle) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

COutput::COutput(HANDLE handle) noexcept : m_handle(handle), m_terminal(IsConsole(handle)) {}

size_t COutput::Width() const noexcept {
    constexpr size_t kUsualWidth = 80;
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!GetConsoleScreenBufferInfo(m_handle, &info)) return kUsualWidth;
    const int width = info.srWindow.Right - info.srWindow.Left + 1;
    return width > 1 ? static_cast<size_t>(width) : kUsualWidth;
}

void COutput::Write(std::wstring_view text) {
    constexpr size_t kPiece = 32 * 1024;
    if (m_terminal) return WriteTerminal(text);
    m_buffer += WideToUtf8(text);
    if (m_buffer.size() >= kPiece) Flush();
}

void COutput::Line(std::wstring_view text) {
    Write(Printable(text) + L'\n');
}

void COutput::WriteTerminal(std::wstring_view text) noexcept {
    // Older consoles refuse more than 64 KB in one call.
    constexpr size_t kPiece = 8 * 1024;
    while (!text.empty() && !m_failed) {
        const std::wstring_view piece = text.substr(0, kPiece);
        DWORD written = 0;
        m_failed = !WriteConsoleW(m_handle, piece.data(), static_cast<DWORD>(piece.size()), &written, nullptr);
        text.remove_prefix(piece.size());
    }
}

void COutput::Flush() noexcept {
    for (std::string_view rest = m_buffer; !rest.empty() && !m_failed;) {
        DWORD written = 0;
        m_failed =
            !WriteFile(m_handle, rest.data(), static_cast<DWORD>(rest.size()), &written, nullptr) || written == 0;
        rest.remove_prefix(std::min<size_t>(written, rest.size()));
    }
    m_buffer.clear();
}
