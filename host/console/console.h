#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/console/cancel.h"
#include "host/console/output.h"

// The standard streams of the process.
class CConsole {
public:
    CConsole() noexcept : out(GetStdHandle(STD_OUTPUT_HANDLE)), err(GetStdHandle(STD_ERROR_HANDLE)) {}

    // Puts the question and reads a line; nothing at the end of the input or after Ctrl-C.
    std::optional<std::wstring> Ask(std::wstring_view question, const CCancel& cancel);

    // One line on the error output, behind the name of the program.
    void Complain(std::wstring_view text);

    COutput out;
    COutput err;
};
