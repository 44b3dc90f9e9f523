// The non-uniformly partitioned convolver: schedule of levels, and the work of one call.
#include "convolution/ConvolutionPartitionedNonuniform.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "convolution/Ring.h"

namespace {

// Block of the level that starts at first_tap: half of it, halved on while two partitions would run
// far past the end of the response.
int level_block(int first_tap, int fir_size, int block_size) {
  if (first_tap == 0) return block_size;
  int block = first_tap;
  do block /= 2;
  while (block + first_tap > fir_size);
  return std::max(block, block_size);
}

}  // namespace

template <class T>
ConvolutionPartitionedNonuniform<T>::FDL::FDL(int block_, const AlignedVector<T>& h, int delay_,
                                              int N)
    : conv(std::make_unique<ConvolutionPartitioned<T>>(block_, h)),
      block(block_),
      delay(delay_),
      M_p_half(conv->get_M_p_half()),
      N_partitions(conv->get_N_partitions()),
      x(static_cast<std::size_t>(block_)),
      y(static_cast<std::size_t>(block_)),
      phase_count(static_cast<int>(std::ceil(static_cast<float>(block_) / static_cast<float>(N)))) {
}

template <class T>
ConvolutionPartitionedNonuniform<T>::FDL::FDL(const FDL& model)
    : conv(std::make_unique<ConvolutionPartitioned<T>>()),
      block(model.block),
      delay(model.delay),
      M_p_half(model.M_p_half),
      N_partitions(model.N_partitions),
      x(model.x.size()),
      y(model.y.size()),
      phase_count(model.phase_count) {
  conv->update(*model.conv);
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::FDL::flush() {
  std::fill(x.begin(), x.end(), T(0));
  std::fill(y.begin(), y.end(), T(0));
  conv->flush();
}

template <class T>
ConvolutionPartitionedNonuniform<T>::ConvolutionPartitionedNonuniform(int block_size_,
                                                                      const AlignedVector<T>& h,
                                                                      int max_fft_pow) {
  update(block_size_, h, max_fft_pow);
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::update(int block_size_, const AlignedVector<T>& h,
                                                 int max_fft_pow) {
  assert(block_size_ > 0 && !h.empty());
  block_size = block_size_;
  fir_size = static_cast<int>(h.size());
  x_ring_size = block_size + fir_size - 1;
  x_ring_size -= x_ring_size % block_size;
  x_position = 0;
  x_ring = AlignedVector<T>(static_cast<std::size_t>(x_ring_size));

  levels.clear();
  const bool bounded = max_fft_pow != -1;
  const int limit = bounded ? block_size << (max_fft_pow & 31) : -1;
  int first_tap = 0;
  while (first_tap < fir_size) {
    const int block = level_block(first_tap, fir_size, block_size);
    if (bounded && block >= limit) {
      const int tail = limit - 1 - first_tap + fir_size;
      add_level(limit, tail - tail % limit, h, first_tap);
      break;
    }
    add_level(block, 2 * block, h, first_tap);
    first_tap = first_tap == 0 ? 2 * block_size : 2 * first_tap;
  }

  level_count = static_cast<int>(levels.size());
  int largest = 0;
  for (const auto& level : levels) largest = std::max(largest, level->block);
  y_ring_size = 2 * largest + block_size;
  y_position = 0;
  y_ring = AlignedVector<T>(static_cast<std::size_t>(y_ring_size));
}

// Appends the level of the tap_count taps from first_tap on, zeros standing for taps past the end.
template <class T>
void ConvolutionPartitionedNonuniform<T>::add_level(int block, int tap_count,
                                                    const AlignedVector<T>& h, int first_tap) {
  AlignedVector<T> taps(static_cast<std::size_t>(tap_count));
  std::copy_n(h.data() + first_tap, std::min(tap_count, fir_size - first_tap), taps.data());
  add_level(std::make_unique<FDL>(block, taps, first_tap / 2, block_size));
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::add_level(std::unique_ptr<FDL> level) {
  find_source(*level);
  levels.push_back(std::move(level));
}

template <class T>
std::unique_ptr<ConvolutionPartitionedNonuniform<T>> ConvolutionPartitionedNonuniform<T>::twin()
    const {
  auto other = std::make_unique<ConvolutionPartitionedNonuniform>();
  other->block_size = block_size;
  other->fir_size = fir_size;
  other->x_ring_size = x_ring_size;
  other->x_ring = AlignedVector<T>(x_ring.size());
  for (const auto& level : levels) other->add_level(std::make_unique<FDL>(*level));
  other->level_count = level_count;
  other->y_ring_size = y_ring_size;
  other->y_ring = AlignedVector<T>(y_ring.size());
  return other;
}

// All levels keep step, so one of the same block had this level's input a fixed number of blocks
// ago: by the difference of the delays.
template <class T>
void ConvolutionPartitionedNonuniform<T>::find_source(FDL& level) const {
  for (const auto& earlier : levels) {
    const int age = (level.delay - earlier->delay) / level.block;
    const bool same = earlier->block == level.block && age > 0 && age < earlier->N_partitions &&
                      level.delay - earlier->delay == age * level.block;
    if (!same) continue;
    level.source = earlier.get();
    level.source_age = age;
  }
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::process(const AlignedVector<T>& x, AlignedVector<T>& y) {
  begin(x);
  for (auto& level : levels) accumulate(*level);
  end(y);
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::process_pair(ConvolutionPartitionedNonuniform& left,
                                                       ConvolutionPartitionedNonuniform& right,
                                                       const AlignedVector<T>& x_left,
                                                       AlignedVector<T>& y_left,
                                                       const AlignedVector<T>& x_right,
                                                       AlignedVector<T>& y_right) {
  left.begin(x_left);
  right.begin(x_right);
  for (std::size_t i = 0; i < left.levels.size(); ++i) {
    accumulate_pair(*left.levels[i], *right.levels[i]);
  }
  left.end(y_left);
  right.end(y_right);
}

// Takes a block in, and the input of each level whose turn it is.
template <class T>
void ConvolutionPartitionedNonuniform<T>::begin(const AlignedVector<T>& x) {
  std::copy_n(x.data(), block_size, x_ring.data() + x_position);
  for (auto& level : levels) {
    if (level->phase == 0) capture(*level);
  }
}

// Brings out the output of each level that is done, and one block of their sum.
template <class T>
void ConvolutionPartitionedNonuniform<T>::end(AlignedVector<T>& y) {
  for (auto& level : levels) {
    if (level->phase == level->phase_count) finish(*level);
  }
  x_position = (x_position + block_size) % x_ring_size;
  ring_take(y_ring, y_position, y.data(), block_size);
}

// Takes the level's next input block out of x_ring and transforms it, or takes its spectrum over.
template <class T>
void ConvolutionPartitionedNonuniform<T>::capture(FDL& level) {
  if (level.source) {
    level.conv->process_X_of(*level.source->conv, level.source_age);
  } else {
    const int start = (x_position + x_ring_size - level.delay) % x_ring_size;
    ring_copy(x_ring, start, level.x.data(), level.block);
    level.conv->process_X(level.x);
  }
  level.capture_position = y_position;
  level.write_position = (y_position + level.delay) % y_ring_size;
}

// One call's share of the level's bins; the last share takes the remaining ones.
template <class T>
typename ConvolutionPartitionedNonuniform<T>::BinRange ConvolutionPartitionedNonuniform<T>::share(
    const FDL& level) {
  const auto chunk = static_cast<int>(
      std::floor(static_cast<float>(level.M_p_half) / static_cast<float>(level.phase_count)));
  const int first = level.phase * chunk;
  const bool is_last = level.phase == level.phase_count - 1;
  return {first, is_last ? level.M_p_half - first : chunk};
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::accumulate(FDL& level) {
  const BinRange bins = share(level);
  level.conv->process_bins(bins.first, bins.count);
  level.phase += 1;
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::accumulate_pair(FDL& a, FDL& b) {
  if (a.phase != b.phase) {
    accumulate(a);
    accumulate(b);
    return;
  }
  const BinRange bins = share(a);
  ConvolutionPartitioned<T>::process_bins_of_pair(*a.conv, *b.conv, bins.first, bins.count);
  a.phase += 1;
  b.phase += 1;
}

// Transforms the level's finished block back and lays it where its time will come.
template <class T>
void ConvolutionPartitionedNonuniform<T>::finish(FDL& level) {
  level.phase = 0;
  level.conv->process_Y(level.y);
  ring_add(y_ring, level.write_position, level.y.data(), level.block);
}

template <class T>
void ConvolutionPartitionedNonuniform<T>::flush() {
  for (auto& level : levels) level->flush();
  std::fill(x_ring.begin(), x_ring.end(), T(0));
  std::fill(y_ring.begin(), y_ring.end(), T(0));
}

template class ConvolutionPartitionedNonuniform<float>;
