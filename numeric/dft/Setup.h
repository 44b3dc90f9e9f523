// Building of spec blocks: the plan of a length, its sizes, and its tables.
#pragma once

#include <cstdint>

#include "numeric/dft/Engine.h"

namespace dft {

// A spec without its tables, and the bytes of its blocks, each without the slack for alignment.
struct Setup {
  Spec spec;
  std::int64_t spec_bytes;
  std::int64_t init_bytes;
  std::int64_t work_bytes;
};

// The plan for a length above kLargestSmall and below 2^30; the scales are left to the caller.
Setup plan(int length);

// Writes the spec and, if it has a core plan, its tables into the block, aligned to a line, of
// spec_bytes. `init` is scratch of init_bytes, aligned to a line.
void build(const Setup& setup, Spec* block, unsigned char* init);

}  // namespace dft
