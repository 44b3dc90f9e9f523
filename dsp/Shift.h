// The unit of work of a lattice row.
#pragma once

#include <cstddef>

// One addition of the previous row, moved up by a squared coordinate and scaled.
struct Shift {
  std::ptrdiff_t back;  // from a cell to its source: the squared coordinate, negated
  float factor;

  // The first cell that has a source.
  int first_cell() const { return static_cast<int>(-back); }
};
