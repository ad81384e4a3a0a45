#pragma once

#include "sysservices/owner.h"

struct IconKind {
    using Value = HICON;
    static void GiveBack(HICON icon) noexcept { DestroyIcon(icon); }
};
using CIcon = COwner<IconKind>;
