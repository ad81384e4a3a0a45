#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// Does the handle belong to a console, where somebody reads or types?
bool IsConsole(HANDLE handle) noexcept;

// One of the process's standard outputs: UTF-16 to a console, UTF-8 to a pipe or file.
class COutput {
public:
    // The handle is borrowed, as the standard handles are; it may be null or invalid, which swallows the text.
    explicit COutput(HANDLE handle) noexcept;
    ~COutput() { Flush(); }
    COutput(const COutput&) = delete;
    COutput& operator=(const COutput&) = delete;

    bool IsTerminal() const noexcept { return m_terminal; }
    // Columns of a terminal's line.
    size_t Width() const noexcept;

    // Text for a terminal goes out at once, other text in larger pieces.
    void Write(std::wstring_view text);
    // One line, see Printable.
    void Line(std::wstring_view text = {});
    void Flush() noexcept;
    // A write failed: the disk is full, or whoever was reading is gone.
    bool Failed() const noexcept { return m_failed; }

private:
    void WriteTerminal(std::wstring_view text) noexcept;

    const HANDLE m_handle;
    bool m_terminal = false;
    bool m_failed = false;
    std::string m_buffer;
};
