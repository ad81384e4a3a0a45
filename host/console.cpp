#include "host/console.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include "host/columns.h"
#include "sysservices/text.h"

namespace {

// A line as typed at a console, without its end.
std::optional<std::wstring> ReadTerminalLine(HANDLE input) {
    wchar_t line[256];
    DWORD length = 0;
    if (!ReadConsoleW(input, line, static_cast<DWORD>(std::size(line)), &length, nullptr) || length == 0) return {};
    std::wstring text(line, length);
    return text.substr(0, text.find_first_of(L"\r\n"));
}

// Byte by byte: what follows the line belongs to whoever reads next.
std::optional<std::wstring> ReadPipedLine(HANDLE input) {
    std::string line;
    char byte = 0;
    for (DWORD got = 0; ReadFile(input, &byte, 1, &got, nullptr) && got == 1 && byte != '\n';)
        line.push_back(byte);
    if (line.empty() && byte != '\n') return {};
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return Utf8ToWide(line);
}

bool IsConsole(HANDLE handle) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

}  // namespace

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

std::optional<std::wstring> CConsole::Ask(std::wstring_view question, const CCancel& cancel) {
    out.Write(question);
    out.Flush();
    // On a thread of its own, which Ctrl-C leaves behind: nothing else ends the wait for a line everywhere.
    std::packaged_task<std::optional<std::wstring>()> read([input = GetStdHandle(STD_INPUT_HANDLE)] {
        return IsConsole(input) ? ReadTerminalLine(input) : ReadPipedLine(input);
    });
    auto line = read.get_future();
    std::thread(std::move(read)).detach();
    while (!cancel.Requested() && line.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout)
        continue;
    const auto answer = cancel.Requested() ? std::nullopt : line.get();
    // The answer's own line end is on the screen only when it was typed there.
    if (!answer || !out.IsTerminal()) out.Line();
    return answer;
}
