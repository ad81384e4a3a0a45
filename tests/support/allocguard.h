#pragma once

// Guarded global operator new and delete for test executables: canaries around every block, double deletes ended at
// once (exit code 99), freed memory overwritten, live blocks counted, failures injected.
namespace alloc_guard {

// Blocks alive now.
long long Live();

// Lets the next `count` allocations of this thread succeed and fails all after them, or only the next, until
// FailAfter(-1). Returns whether any has failed since the call before.
bool FailAfter(long long count, bool once = false);

}  // namespace alloc_guard
