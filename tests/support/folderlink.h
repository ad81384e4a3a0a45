#pragma once

#include <string>

// Makes `link` a junction-like entry (directory and reparse point) for the folder `target`. The platform's own call
// claims success and makes nothing here, so the host system's link command does it. False when no such entry appeared.
bool MakeFolderLink(const std::wstring& link, const std::wstring& target);
