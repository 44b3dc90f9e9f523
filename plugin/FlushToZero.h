// Sets flush-to-zero and denormals-are-zero for a scope and restores the caller's control word.
#pragma once

#if (defined(__x86_64__) || defined(__SSE2__)) && !defined(TOLMARA_SCALAR)
#include <xmmintrin.h>

class ScopedFlushToZero {
 public:
  ScopedFlushToZero() : mSaved(_mm_getcsr()) {
    _mm_setcsr(mSaved | kFlushToZero | kDenormalsAreZero);
  }
  ~ScopedFlushToZero() { _mm_setcsr(mSaved); }
  ScopedFlushToZero(const ScopedFlushToZero&) = delete;
  ScopedFlushToZero& operator=(const ScopedFlushToZero&) = delete;

 private:
  static constexpr unsigned kFlushToZero = 0x8000;
  static constexpr unsigned kDenormalsAreZero = 0x0040;
  const unsigned mSaved;
};

#else

// Elsewhere a render only takes longer.
class ScopedFlushToZero {
 public:
  ScopedFlushToZero() {}
  ~ScopedFlushToZero() {}
  ScopedFlushToZero(const ScopedFlushToZero&) = delete;
  ScopedFlushToZero& operator=(const ScopedFlushToZero&) = delete;
};

#endif
