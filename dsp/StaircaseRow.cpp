// Sums of shifts at the cells where a source steps, many cells at a time.
#include "dsp/StaircaseRow.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "numeric/Float4.h"

namespace {

// A source steps at a cell: this is what it adds from there on.
struct Step {
  int cell;
  std::uint32_t shift;
  float term;
};

constexpr std::size_t kCells = 16;  // cells summed at a time, one a lane
constexpr int kVectors = kCells / 4;

// For each shift what it adds to each of the cells.
class Terms {
 public:
  explicit Terms(std::size_t shifts) : terms(shifts) {}

  // From a cell of the group on.
  void set(std::size_t shift, std::size_t cell, float term) {
    std::fill(terms[shift].begin() + static_cast<std::ptrdiff_t>(cell), terms[shift].end(), term);
  }
  // The last cell's term is that of all cells of the next group.
  void carry_over(std::size_t shift) { terms[shift].fill(terms[shift].back()); }

  void sum(float* sums) const {
    std::array<Float4, kVectors> sum;
    sum.fill(Float4::zero());
    for (const auto& row : terms) {
      for (int k = 0; k < kVectors; ++k) {
        sum[static_cast<std::size_t>(k)] =
            sum[static_cast<std::size_t>(k)] + Float4::load(row.data() + 4 * k);
      }
    }
    for (int k = 0; k < kVectors; ++k) sum[static_cast<std::size_t>(k)].store(sums + 4 * k);
  }

 private:
  std::vector<std::array<float, kCells>> terms;
};

std::vector<Step> sorted_steps(const float* previous, const std::vector<int>& steps,
                               const std::vector<Shift>& shifts, int last) {
  std::vector<Step> sorted;
  for (std::size_t n = 0; n < shifts.size(); ++n) {
    for (const int step : steps) {
      const int cell = step + shifts[n].first_cell();
      if (cell > last) break;
      sorted.push_back({cell, static_cast<std::uint32_t>(n), previous[step] * shifts[n].factor});
    }
  }
  std::sort(sorted.begin(), sorted.end(),
            [](const Step& a, const Step& b) { return a.cell < b.cell; });
  return sorted;
}

}  // namespace

std::vector<int> steps_of_row_0(const float* row, int S) {
  std::vector<int> steps = {0};
  for (int r = 1; r <= S; ++r) {
    if (row[r * r] != row[r * r - 1]) steps.push_back(r * r);
  }
  return steps;
}

void fill_between_steps(float* row, const float* previous, const std::vector<int>& steps,
                        std::vector<Shift> shifts, bool fold, int last) {
  // Adds nothing, but has its steps where the folded row has.
  if (fold) shifts.push_back({0, 0.0f});
  Terms terms(shifts.size());
  const std::vector<Step> sorted = sorted_steps(previous, steps, shifts, last);
  int filled = 0;
  float value = 0;
  const auto fill_to = [&](int cell) {
    std::fill(row + filled, row + cell, value);
    filled = cell;
  };
  for (auto next = sorted.begin(); next != sorted.end();) {
    const auto first = next;
    std::array<int, kCells> cells;
    std::size_t count = 0;
    for (; next != sorted.end(); ++next) {
      if (count == 0 || cells[count - 1] != next->cell) {
        if (count == kCells) break;
        cells[count++] = next->cell;
      }
      terms.set(next->shift, count - 1, next->term);
    }
    std::array<float, kCells> sums;
    terms.sum(sums.data());
    for (std::size_t k = 0; k < count; ++k) {
      fill_to(cells[k]);
      value = fold ? 2 * sums[k] + previous[cells[k]] : sums[k];
    }
    for (auto step = first; step != next; ++step) terms.carry_over(step->shift);
  }
  fill_to(last + 1);
}
