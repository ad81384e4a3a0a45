#pragma once

#include <stdexcept>
#include <string_view>

#include "sysservices/text.h"

// Why a command cannot go on: one line for the user that names the file and what to do. Ends the command as failed.
class CHostError : public std::runtime_error {
public:
    explicit CHostError(std::wstring_view message) : std::runtime_error(WideToUtf8(message)) {}
};
