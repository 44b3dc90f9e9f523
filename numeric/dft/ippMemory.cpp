// The engine's allocator: blocks aligned to a cache line.
#include <cstdint>
#include <cstdlib>

#include "numeric/dft/ippDFT.h"

namespace {

void* allocate(std::int64_t bytes) {
  constexpr std::int64_t kTooLarge = std::int64_t{1} << 31;
  if (bytes < 1 || bytes >= kTooLarge) return nullptr;
  void* p = nullptr;
  return posix_memalign(&p, 64, static_cast<std::size_t>(bytes)) == 0 ? p : nullptr;
}

}  // namespace

Ipp32f* ippsMalloc_32f(int count) {
  return static_cast<Ipp32f*>(allocate(std::int64_t{count} * 4));
}

Ipp8u* ippsMalloc_8u(int count) { return static_cast<Ipp8u*>(allocate(count)); }

void ippFree(void* p) { std::free(p); }
