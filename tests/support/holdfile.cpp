#include <windows.h>

#include <cstdio>
#include <memory>

// holdfile FILE: keeps the file open, so that nobody can delete it, until the standard input ends.

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 2) return 2;
    // No FILE_SHARE_DELETE: that is what makes it undeletable.
    const HANDLE opened = CreateFileW(arguments[1], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return 1;
    const Handle file(opened);
    std::puts("held");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
