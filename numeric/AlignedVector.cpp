// Memory of large buffers, back to the system.
#include "numeric/AlignedVector.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

// The heap keeps large freed blocks once a program has freed one, and an instance frees tables of
// many megabytes at each render.
void release_pages(void* block, std::size_t bytes) {
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (start + page - 1) / page * page,
                       end = (start + bytes) / page * page;
  if (block != nullptr && first < end) {
    madvise(reinterpret_cast<void*>(first), end - first, MADV_DONTNEED);
  }
}
