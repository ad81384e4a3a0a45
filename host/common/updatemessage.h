#pragma once

#include <cstdint>
#include <string>

// What a code of the update object (InternetFileResult) means to the user and what to do, with the code behind it.
std::wstring UpdateMessage(uint32_t code);
