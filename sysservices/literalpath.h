#pragma once

#include "sysservices/text.h"

// The literal form of a path, "\\?\C:\folder\name", which Windows takes as it stands. Any other path it reads its own
// way: it follows "." and "..", takes "/" for "\", joins doubled separators, drops one dot at the end of each folder's
// name and all dots and blanks at the end of the path. What a rule file or the environment wrote is read like that; a
// name that a search returned must not be.

// The absolute path as Windows reads `path`, which is not empty. Throws std::runtime_error when the system refuses.
CString FullPath(const CString& path);

// The literal form of what Windows reads in `path`; one that is literal already comes back as it is. Throws as
// FullPath.
CString LiteralPath(const CString& path);

// Appends what somebody wrote, folders, a file or a pattern, to the literal path of a folder, read as Windows would
// read it there. ".." climbs no higher than the drive or share. Throws as FullPath.
void AppendToLiteral(CString& literal, std::wstring_view written);
