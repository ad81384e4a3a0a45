#include "host/console/console.h"

#include <chrono>
#include <future>
#include <thread>
#include <utility>

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

}  // namespace

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

void CConsole::Complain(std::wstring_view text) {
    err.Line(std::wstring(L"dsw: ").append(text));
}
