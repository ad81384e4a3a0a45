#pragma once

// Guarded global operator new and delete for test executables: canaries around every block, double deletes ended at
// once (exit code 99), freed memory overwritten, live blocks counted, failures injected.
namespace alloc_guard {

// Blocks alive now.
long long Live();

// Lets the next `count` allocations succeed and fails all after them, until FailAfter(-1).
void FailAfter(long long count);

}  // namespace alloc_guard
