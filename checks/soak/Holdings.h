// What the process holds of the system.
#pragma once

#include <cstddef>

struct Holdings {
  size_t heap;  // bytes that somebody allocated and nobody freed
  int threads;
  int descriptors;
};

Holdings HoldingsNow();
