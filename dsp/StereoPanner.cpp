// Rings, cross-fades and ramps of the stereo placement.
#include "dsp/StereoPanner.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "dsp/FIRFunctions.h"
#include "numeric/Convert.h"

namespace {

// Longest delay of a ring whatever rate the host tells: far above 1050 ms at any rate in use.
constexpr int kMaxDelaySamples = 1 << 24;

int delay_in_samples(float samples) {
  return std::clamp(saturate_to_int(std::floor(samples)), 0, kMaxDelaySamples);
}

}  // namespace

template <class T>
StereoPanner<T>::StereoPanner(int new_sample_rate, int new_block_size, int new_max_delay_ms,
                              int delay_left_ms, int delay_right_ms, float gain_left_dB,
                              float gain_right_dB) {
  update(new_sample_rate, new_block_size, new_max_delay_ms, delay_left_ms, delay_right_ms,
         gain_left_dB, gain_right_dB);
}

template <class T>
void StereoPanner<T>::update(int new_sample_rate, int new_block_size, int new_max_delay_ms,
                             int delay_left_ms, int delay_right_ms, float gain_left_dB,
                             float gain_right_dB) {
  assert(new_block_size > 0);
  sample_rate = new_sample_rate;
  max_delay_ms = new_max_delay_ms;
  block_size = new_block_size;
  max_delay_samples = delay_in_samples(static_cast<float>(max_delay_ms) / 1000.0f *
                                       static_cast<float>(sample_rate));
  // Rounding can make the longest delay one sample longer than max_delay_samples; the ring holds
  // that delay beside the block being written.
  const std::int64_t longest = std::max(max_delay_samples, compute_delay_offset(max_delay_ms));
  const std::int64_t room = longest + 2 * std::int64_t{block_size} - 1;
  buffer_size = static_cast<int>(room - room % block_size);
  buffer_left.assign(static_cast<std::size_t>(buffer_size), T(0));
  buffer_right.assign(static_cast<std::size_t>(buffer_size), T(0));

  delay_offset_left = compute_delay_offset(delay_left_ms);
  delay_offset_right = compute_delay_offset(delay_right_ms);
  write_index_left = 0;
  write_index_right = 0;
  gain_dB_left = gain_left_dB;
  gain_dB_right = gain_right_dB;

  fade_table.resize(static_cast<std::size_t>(block_size) + 1);
  const float step = 1.5707964f / static_cast<float>(block_size);
  float angle = 0.0f;
  for (T& value : fade_table) {
    value = static_cast<T>(std::cos(static_cast<double>(angle)));
    angle += step;  // kept: summed in float, so the last value is not exactly 0
  }
}

template <class T>
int StereoPanner<T>::compute_delay_offset(int delay_ms) const {
  const std::int64_t ms = std::min(std::abs(std::int64_t{delay_ms}), std::int64_t{max_delay_ms});
  return delay_in_samples(static_cast<float>(ms * sample_rate) / 1000.0f);
}

template <class T>
void StereoPanner<T>::process(int delay_left_ms, int delay_right_ms, float gain_left_dB,
                              float gain_right_dB, const AlignedVector<T>& in_left,
                              const AlignedVector<T>& in_right, AlignedVector<T>& out_left,
                              AlignedVector<T>& out_right) {
  process_left(delay_left_ms, gain_left_dB, in_left, out_left);
  process_right(delay_right_ms, gain_right_dB, in_right, out_right);
}

template <class T>
void StereoPanner<T>::process_left(int delay_ms, float gain_dB, const AlignedVector<T>& in,
                                   AlignedVector<T>& out) {
  process_side(delay_ms, gain_dB, in, out, delay_offset_left, gain_dB_left, buffer_left,
               write_index_left);
}

template <class T>
void StereoPanner<T>::process_right(int delay_ms, float gain_dB, const AlignedVector<T>& in,
                                    AlignedVector<T>& out) {
  process_side(delay_ms, gain_dB, in, out, delay_offset_right, gain_dB_right, buffer_right,
               write_index_right);
}

template <class T>
void StereoPanner<T>::process_side(int delay_ms, float gain_dB, const AlignedVector<T>& in,
                                   AlignedVector<T>& out, int& delay_offset, float& gain_dB_state,
                                   AlignedVector<T>& buffer, int& write_index) {
  const int B = block_size;
  T* const ring = buffer.data();
  std::copy_n(in.data(), B, ring + write_index);

  const int new_offset = compute_delay_offset(delay_ms);
  const int old_offset = delay_offset;
  const float new_gain = dB_to_mag(gain_dB);
  const float old_gain = dB_to_mag(gain_dB_state);
  const bool ramps = gain_dB != gain_dB_state;
  const float step = ramps ? (new_gain - old_gain) / static_cast<float>(B) : 0.0f;
  float gain = ramps ? old_gain : new_gain;

  const auto wrapped = [this](std::int64_t i) { return static_cast<int>(i % buffer_size); };
  const std::int64_t end = std::int64_t{write_index} + buffer_size;
  const int new_read = wrapped(end - new_offset);
  const T* const fade = fade_table.data();
  T* const y = out.data();
  if (new_offset == old_offset) {
    for (int i = 0; i < B; ++i) {
      y[i] = ring[wrapped(std::int64_t{new_read} + i)] * gain;
      gain += step;
    }
  } else {
    const int old_read = wrapped(end - old_offset);
    for (int i = 0; i < B; ++i) {
      y[i] = (ring[wrapped(std::int64_t{old_read} + i)] * fade[i] +
              ring[wrapped(std::int64_t{new_read} + i)] * fade[B - i]) *
             gain;
      gain += step;
    }
  }

  delay_offset = new_offset;
  gain_dB_state = gain_dB;
  write_index = wrapped(std::int64_t{write_index} + B);
}

template <class T>
void StereoPanner<T>::flush() {
  std::fill(buffer_left.begin(), buffer_left.end(), T(0));
  std::fill(buffer_right.begin(), buffer_right.end(), T(0));
}

template <class T>
float StereoPanner<T>::sinc(float x) {
  if (x == 0.0f) return 1.0f;
  const float y = x * 3.1415927f;
  return static_cast<float>(std::sin(static_cast<double>(y)) / static_cast<double>(y));
}

template class StereoPanner<float>;
