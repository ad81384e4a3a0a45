#pragma once

#include <stdexcept>
#include <string_view>

#include "host/exitstatus.h"
#include "sysservices/text.h"

// Why a command cannot go on: one line for the user that names the file and what to do. Ends the command.
class CHostError : public std::runtime_error {
public:
    explicit CHostError(std::wstring_view message, ExitStatus status = ExitStatus::Failed)
        : std::runtime_error(WideToUtf8(message)),
          m_status(status) {}

    ExitStatus Status() const noexcept { return m_status; }

private:
    ExitStatus m_status;
};
