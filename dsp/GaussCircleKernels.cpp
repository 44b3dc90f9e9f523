// The variants of the lattice table that add whole rows, shifted and scaled: plain loops, and
// 128-bit operations on tiles that stay in the cache.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "dsp/GaussCircle.h"
#include "numeric/Float4.h"

namespace {

// One addition of the previous row, moved up by a squared coordinate and scaled.
struct Shift {
  std::ptrdiff_t back;  // from a cell to its source: the squared coordinate, negated
  float factor;

  // The first cell that has a source.
  int first_cell() const { return static_cast<int>(-back); }
};

// A tile and the parts of the previous row that one pass reads stay in the second-level cache.
constexpr int kTileCells = 1 << 15;
// Shifts per pass: as many streams as the processor fetches ahead.
constexpr std::size_t kGroup = 12;
// Sums held in registers at a time; a factor and a product need two of the sixteen.
constexpr int kVectors = 12;

std::size_t to_size(int n) { return static_cast<std::size_t>(n); }

// Adds all shifts, in their order, to vectors * 4 cells from row on, which is aligned.
template <int vectors>
void add_block(float* row, const float* previous, const Shift* first, const Shift* last) {
  Float4 sum[vectors];
  for (int k = 0; k < vectors; ++k) sum[k] = Float4::load_aligned(row + 4 * k);
  for (const Shift* shift = first; shift != last; ++shift) {
    const float* const source = previous + shift->back;
    const Float4 factor = Float4::set1(shift->factor);
    for (int k = 0; k < vectors; ++k) sum[k] = sum[k] + Float4::load(source + 4 * k) * factor;
  }
  for (int k = 0; k < vectors; ++k) sum[k].store_aligned(row + 4 * k);
}

void add_cell(float* row, const float* previous, const Shift* first, const Shift* last) {
  for (; first != last; ++first) *row += previous[first->back] * first->factor;
}

// Adds all shifts to cells from to end - 1, all of which every shift reaches.
void add_shifts(float* row, const float* previous, const Shift* first, const Shift* last, int from,
                int end) {
  int i = from;
  for (; i < end && i % 4 != 0; ++i) add_cell(row + i, previous + i, first, last);
  for (; i + 4 * kVectors <= end; i += 4 * kVectors) {
    add_block<kVectors>(row + i, previous + i, first, last);
  }
  for (; i + 4 <= end; i += 4) add_block<1>(row + i, previous + i, first, last);
  for (; i < end; ++i) add_cell(row + i, previous + i, first, last);
}

// Adds a group of shifts to cells from to end - 1. A shift reaches the cells from its first on;
// along a group that falls and then rises, so the shifts that reach a cell are neighbours.
void add_group(float* row, const float* previous, const Shift* first, const Shift* last, int from,
               int end) {
  while (from < end) {
    const auto reaches = [from](const Shift& shift) { return shift.first_cell() <= from; };
    int next = end;
    for (const Shift* shift = first; shift != last; ++shift) {
      if (!reaches(*shift)) next = std::min(next, shift->first_cell());
    }
    const Shift* const begin = std::find_if(first, last, reaches);
    add_shifts(row, previous, begin, std::find_if_not(begin, last, reaches), from, next);
    from = next;
  }
}

// The second half of a symmetric axis, and its index 0.
void fold(float* row, const float* previous, int from, int end) {
  for (int i = from; i < end; ++i) row[i] = 2 * row[i] + previous[i];
}

// All additions of one axis, in their order; those whose factor has reached 0 are left out.
std::vector<Shift> shifts_of_axis(const GaussCircle<float>& lattice, std::size_t d) {
  const int L = lattice.dim_sizes[d];
  const int o = lattice.dim_offsets[d];
  const auto [a, b] = lattice.images_within(lattice.S, d);
  std::vector<Shift> shifts;
  for (int n = o != 0 ? a : 1; n <= b; ++n) {
    const std::ptrdiff_t x = n * L + o;
    const float factor = lattice.weight_powers[d][to_size(std::abs(n))];
    if (factor > 0) shifts.push_back({-x * x, factor});
  }
  return shifts;
}

}  // namespace

template <class T>
void GaussCircle<T>::compute_C_vectorized() {
  zero_table();
  fill_row_0();
  for (std::size_t d = 1; d < to_size(D); ++d) {
    T* const row = C[d].data();
    const T* const previous = C[d - 1].data();
    for (const Shift shift : shifts_of_axis(*this, d)) {
      for (int i = shift.first_cell(); i <= S2; ++i)
        row[i] += previous[i + shift.back] * shift.factor;
    }
    if (dim_offsets[d] == 0) fold(row, previous, 0, S2 + 1);
  }
}

template <class T>
void GaussCircle<T>::compute_C_vectorized_SSE2() {
  fill_row_0();
  for (std::size_t d = 1; d < to_size(D); ++d) {
    T* const row = C[d].data();
    const T* const previous = C[d - 1].data();
    const std::vector<Shift> shifts = shifts_of_axis(*this, d);
    for (int from = 0; from <= S2; from += kTileCells) {
      const int end = std::min(from + kTileCells, S2 + 1);
      std::fill(row + from, row + end, T(0));
      for (std::size_t g = 0; g < shifts.size(); g += kGroup) {
        const Shift* const first = shifts.data() + g;
        const std::size_t count = std::min(kGroup, shifts.size() - g);
        add_group(row, previous, first, first + count, from, end);
      }
      if (dim_offsets[d] == 0) fold(row, previous, from, end);
    }
  }
}

template <class T>
void GaussCircle<T>::compute_C_vectorized_AVX() {
  compute_C_vectorized_SSE2();
}

template class GaussCircle<float>;
