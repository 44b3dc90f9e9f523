// The variants of the lattice table that add whole rows, shifted and scaled: plain loops, and
// vectors on tiles that stay in the cache.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "dsp/GaussCircle.h"
#include "dsp/RenderKernels.h"
#include "dsp/Shift.h"
#include "dsp/StaircaseRow.h"

namespace {

// A tile and the parts of the previous row that one pass reads stay in the second-level cache.
constexpr int kTileCells = 1 << 16;
// Shifts per pass: as many streams as the processor fetches ahead.
constexpr std::size_t kGroup = 12;
// Row 1 is summed at its steps alone where these are fewer than its cells by this factor.
constexpr std::size_t kCellsPerStep = 8;
std::size_t to_size(int n) { return static_cast<std::size_t>(n); }

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
    render_kernels().add_shifts(row, previous, begin, std::find_if_not(begin, last, reaches), from,
                                next);
    from = next;
  }
}

// The second half of a symmetric axis, and its index 0.
void fold(float* row, const float* previous, int from, int end) {
  for (int i = from; i < end; ++i) row[i] = 2 * row[i] + previous[i];
}

void add_in_tiles(float* row, const float* previous, const std::vector<Shift>& shifts,
                  bool symmetric, int last_cell) {
  for (int from = 0; from <= last_cell; from += kTileCells) {
    const int end = std::min(from + kTileCells, last_cell + 1);
    std::fill(row + from, row + end, 0.0f);
    for (std::size_t g = 0; g < shifts.size(); g += kGroup) {
      const Shift* const first = shifts.data() + g;
      const std::size_t count = std::min(kGroup, shifts.size() - g);
      add_group(row, previous, first, first + count, from, end);
    }
    if (symmetric) fold(row, previous, from, end);
  }
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
    const bool symmetric = dim_offsets[d] == 0;
    const std::vector<Shift> shifts = shifts_of_axis(*this, d);
    if (d == 1) {
      const std::vector<int> steps = steps_of_row_0(previous, S);
      if (steps.size() * shifts.size() < to_size(S2) / kCellsPerStep) {
        fill_between_steps(row, previous, steps, shifts, symmetric, S2);
        continue;
      }
    }
    add_in_tiles(row, previous, shifts, symmetric, S2);
  }
}

template <class T>
void GaussCircle<T>::compute_C_vectorized_AVX() {
  compute_C_vectorized_SSE2();
}

template class GaussCircle<float>;
