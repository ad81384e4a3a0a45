#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

struct IconDestroyer {
    void operator()(HICON icon) const noexcept { DestroyIcon(icon); }
};

// Owns an icon handle.
using CIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDestroyer>;
