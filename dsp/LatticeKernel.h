// The additions of a lattice row over a vector type. Everything here has internal linkage: the
// linker must never merge a copy that a lesser processor would run.
#pragma once

#include "dsp/Shift.h"

namespace {

template <class V>
constexpr int kLanes = sizeof(V) / sizeof(float);

// Adds all shifts, in their order, to so many vectors of cells from row on.
template <class V, int vectors>
void add_block(float* row, const float* previous, const Shift* first, const Shift* last) {
  V sum[vectors];
  for (int k = 0; k < vectors; ++k) sum[k] = V::load(row + kLanes<V> * k);
  for (const Shift* shift = first; shift != last; ++shift) {
    const float* const source = previous + shift->back;
    const V factor = V::set1(shift->factor);
    for (int k = 0; k < vectors; ++k) sum[k] = sum[k] + V::load(source + kLanes<V> * k) * factor;
  }
  for (int k = 0; k < vectors; ++k) sum[k].store(row + kLanes<V> * k);
}

void add_cell(float* row, const float* previous, const Shift* first, const Shift* last) {
  for (; first != last; ++first) *row += previous[first->back] * first->factor;
}

// Adds all shifts to cells from to end - 1, with so many vectors of sums in registers at a time.
template <class V, int vectors>
void add_shifts(float* row, const float* previous, const Shift* first, const Shift* last, int from,
                int end) {
  constexpr int kBlock = kLanes<V> * vectors;
  int i = from;
  for (; i < end && i % kLanes<V> != 0; ++i) add_cell(row + i, previous + i, first, last);
  for (; i + kBlock <= end; i += kBlock) {
    add_block<V, vectors>(row + i, previous + i, first, last);
  }
  for (; i + kLanes<V> <= end; i += kLanes<V>) add_block<V, 1>(row + i, previous + i, first, last);
  for (; i < end; ++i) add_cell(row + i, previous + i, first, last);
}

}  // namespace
