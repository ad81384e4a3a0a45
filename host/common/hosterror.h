#pragma once

#include <stdexcept>
#include <string_view>

#include "sysservices/text.h"

// Why a host cannot go on: one line for the user that names the file and what to do.
class CHostError : public std::runtime_error {
public:
    explicit CHostError(std::wstring_view message) : std::runtime_error(WideToUtf8(message)) {}
};

// The same, where what the user asked for makes no sense.
class CUsageError : public CHostError {
public:
    using CHostError::CHostError;
};
