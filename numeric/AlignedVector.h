// The one buffer type of the signal-processing code: a growable array on 32-byte aligned storage.
#pragma once

#include <stdlib.h>

#include <complex>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

// One single-precision complex value: two consecutive floats, real part first. Arrays of it are
// handed to the transforms as interleaved floats.
using complex = std::complex<float>;

// Hands the whole pages of a block that is about to be freed to the system, which the heap would
// keep. Without effect on memory that the host has locked.
void release_pages(void* block, std::size_t bytes);

// Standard allocator whose storage starts at a multiple of Alignment bytes. A refused allocation
// yields a null pointer and is not reported; callers do not test for it. Blocks from 1 MiB on leave
// no memory behind when they are freed. Any thread, but not the audio thread: it calls the system's
// allocator.
template <class T, std::size_t Alignment>
class AlignmentAllocator {
 public:
  using value_type = T;
  using is_always_equal = std::true_type;
  template <class U>
  struct rebind {
    using other = AlignmentAllocator<U, Alignment>;
  };

  AlignmentAllocator() = default;
  template <class U>
  explicit(false) AlignmentAllocator(const AlignmentAllocator<U, Alignment>&) {}

  T* allocate(std::size_t n) {
    if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
    void* p = nullptr;
    if (posix_memalign(&p, Alignment, n * sizeof(T)) != 0) return nullptr;
    return static_cast<T*>(p);
  }
  void deallocate(T* p, std::size_t n) {
    if (n * sizeof(T) >= kLargeBlock) release_pages(p, n * sizeof(T));
    free(p);
  }

  friend bool operator==(const AlignmentAllocator&, const AlignmentAllocator&) { return true; }

 private:
  static constexpr std::size_t kLargeBlock = std::size_t{1} << 20;
};

template <class T>
using AlignedVector = std::vector<T, AlignmentAllocator<T, 32>>;
