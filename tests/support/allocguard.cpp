#include "tests/support/allocguard.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace alloc_guard {
namespace {

constexpr unsigned long long kAlive = 0xA110C8ED0BEEF001ULL;
constexpr unsigned long long kDead = 0xDEADDEADDEADDEADULL;
constexpr char kTail[] = "\xFD\xFD\xFD\xFD\xFD\xFD\xFD";

struct Header {
    unsigned long long state;
    size_t size;
};

std::atomic<long long> g_live{0};
std::atomic<long long> g_untilFailure{-1};
bool g_failsOnce = false, g_failed = false;
DWORD g_failingThread = 0;

[[noreturn]] void Die(const char* what, void* block) {
    std::fprintf(stderr, "alloc_guard: %s at %p\n", what, block);
    std::fflush(stderr);
    ExitProcess(99);
}

void* Allocate(size_t size) noexcept {
    if (g_untilFailure >= 0 && GetCurrentThreadId() == g_failingThread && --g_untilFailure < 0) {
        g_failed = true;
        g_untilFailure = g_failsOnce ? -1 : 0;
        return nullptr;
    }
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size + sizeof kTail));
    if (!header) return nullptr;
    *header = {kAlive, size};
    auto* block = reinterpret_cast<unsigned char*>(header + 1);
    std::memset(block, 0xCD, size);
    std::memcpy(block + size, kTail, sizeof kTail);
    ++g_live;
    return block;
}

void Free(void* block) noexcept {
    if (!block) return;
    auto* header = static_cast<Header*>(block) - 1;
    if (header->state == kDead) Die("double delete", block);
    if (header->state != kAlive) Die("bad pointer or underrun", block);
    if (std::memcmp(static_cast<char*>(block) + header->size, kTail, sizeof kTail) != 0) Die("overrun", block);
    header->state = kDead;
    std::memset(block, 0xDD, header->size);
    --g_live;
    std::free(header);
}

}  // namespace

long long Live() {
    return g_live;
}

bool FailAfter(long long count, bool once) {
    g_failingThread = GetCurrentThreadId();
    g_failsOnce = once;
    g_untilFailure = count;
    return std::exchange(g_failed, false);
}

}  // namespace alloc_guard

// All other forms of the library end in these.
void* operator new(size_t size) {
    if (void* block = alloc_guard::Allocate(size)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    alloc_guard::Free(block);
}
void operator delete(void* block, size_t) noexcept {
    alloc_guard::Free(block);
}
