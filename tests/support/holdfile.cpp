#include <windows.h>

#include <cstdio>

#include "sysservices/handle.h"

// holdfile FILE: keeps the file open, so that nobody can delete it, until the standard input ends.
int wmain(int count, wchar_t** arguments) {
    if (count != 2) return 2;
    // No FILE_SHARE_DELETE: that is what makes it undeletable.
    const CHandle file(CreateFileW(arguments[1], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return 1;
    std::puts("held");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
