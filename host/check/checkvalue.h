#pragma once

#include <optional>
#include <string>

#include "host/check/checkcode.h"

// What an attribute may hold.
enum class CheckType { Text, Integer, Flag, SelState, CatagoryType, FolderIndex, RootKey, EmptyProc, Key, ProductName };

// Why a value does not fit.
struct CheckValueFault {
    CheckCode code;
    std::wstring message;
};

// Nothing when the value (UTF-8, as in the file) fits the type.
std::optional<CheckValueFault> FindValueFault(CheckType type, const char* value);
