// Counts of the heap calls and of the blocking mutex locks of the current thread, for tests that
// promise none.
#pragma once

#include <cstddef>

// Counts the heap calls made by the thread that constructed it, from then on. Guards may nest.
// Every road to the heap counts, whichever library takes it: operator new, malloc and its kin,
// aligned allocation. Works in plain builds and under the address and thread sanitizers.
class AllocationGuard {
 public:
  AllocationGuard();
  long allocations() const;  // blocks obtained, resized ones included
  long frees() const;        // blocks given back, null pointers not counted

 private:
  long allocations_before;
  long frees_before;
};

// Counts the calls of pthread_mutex_lock, and so of std::mutex::lock, made by the current thread
// from code that is linked into the test program; a module opened by dlopen is not seen. A try-lock
// doesn't wait and doesn't count.
class LockCount {
 public:
  LockCount();
  long locks() const;

 private:
  long locks_before;
};

// While one exists, operator new refuses blocks of exactly that size, on every thread, to code that
// is linked into the test program. For tests of what happens without memory.
class RefusedSize {
 public:
  explicit RefusedSize(std::size_t size);
  ~RefusedSize();
};
