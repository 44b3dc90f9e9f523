// Wrapping copies between plain arrays and ring buffers whose sizes are no powers of two.
#pragma once

#include <algorithm>

#include "numeric/AlignedVector.h"

// Copies count samples from the ring, beginning at position and wrapping, to out.
// count is at most the size of the ring.
template <class T>
void ring_copy(const AlignedVector<T>& ring, int position, T* out, int count) {
  const int first = std::min(count, static_cast<int>(ring.size()) - position);
  out = std::copy_n(ring.data() + position, first, out);
  std::copy_n(ring.data(), count - first, out);
}

// Adds count samples to the ring, beginning at position and wrapping.
template <class T>
void ring_add(AlignedVector<T>& ring, int position, const T* in, int count) {
  const int first = std::min(count, static_cast<int>(ring.size()) - position);
  T* out = ring.data() + position;
  for (int i = 0; i < first; ++i) out[i] += in[i];
  for (int i = first; i < count; ++i) ring[static_cast<std::size_t>(i - first)] += in[i];
}

// Moves the count samples at position to out, leaves zeros in their place and advances position.
// They lie in one run: position is a multiple of count, and so is the size of the ring.
template <class T>
void ring_take(AlignedVector<T>& ring, int& position, T* out, int count) {
  T* in = ring.data() + position;
  std::copy_n(in, count, out);
  std::fill_n(in, count, T(0));
  position = (position + count) % static_cast<int>(ring.size());
}
