#pragma once

#include "sysservices/text.h"

// The path in the form that names exactly the file which a search found. Windows drops a dot or a blank at the end of a
// name unless the path asks to be taken literally: "a." would mean its neighbour "a". Every other path comes back as it
// is. Throws std::bad_alloc.
CString LiteralPath(const CString& path);
