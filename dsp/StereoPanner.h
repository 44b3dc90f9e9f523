// Stereo placement: a delay and a gain for each of two channels, changed without a click.
#pragma once

#include "numeric/AlignedVector.h"

// Gives each channel a delay of whole milliseconds and a gain in dB, one block of block_size
// samples per call. A changed delay crosses over from the old to the new read position within one
// block on a quarter-cosine; a changed gain ramps linearly within one block. The delay is a whole
// number of samples; nothing is resampled. The constructor and update allocate; the process
// operations read and write exactly block_size samples, allocate nothing and take no lock, and in
// and out may be the same array. One thread at a time (in the plug-in: the audio thread, under the
// plug-in's lock).
template <class T>
class StereoPanner {
 public:
  StereoPanner() = default;
  StereoPanner(int sample_rate, int block_size, int max_delay_ms, int delay_left_ms,
               int delay_right_ms, float gain_left_dB, float gain_right_dB);

  // Reconfigures everything: silent rings, delays and gains as given. block_size must be above 0.
  void update(int sample_rate, int block_size, int max_delay_ms, int delay_left_ms,
              int delay_right_ms, float gain_left_dB, float gain_right_dB);
  // The delay in samples; the sign is ignored, and a delay above max_delay_ms acts as that.
  int compute_delay_offset(int delay_ms) const;

  // Both channels, left first.
  void process(int delay_left_ms, int delay_right_ms, float gain_left_dB, float gain_right_dB,
               const AlignedVector<T>& in_left, const AlignedVector<T>& in_right,
               AlignedVector<T>& out_left, AlignedVector<T>& out_right);
  void process_left(int delay_ms, float gain_dB, const AlignedVector<T>& in, AlignedVector<T>& out);
  void process_right(int delay_ms, float gain_dB, const AlignedVector<T>& in,
                     AlignedVector<T>& out);
  // The body of the three above; the last four arguments are the channel's fields.
  void process_side(int delay_ms, float gain_dB, const AlignedVector<T>& in, AlignedVector<T>& out,
                    int& delay_offset, float& gain_dB_state, AlignedVector<T>& buffer,
                    int& write_index);
  // Silences both rings; delays, gains and positions stay.
  void flush();
  // sin(pi x) / (pi x), 1 at 0.
  static float sinc(float x);

  int sample_rate = 0;            // samples per second
  int max_delay_ms = 0;           // longest delay that is honoured
  int block_size = 0;             // samples per call
  int max_delay_samples = 0;      // max_delay_ms in samples
  int buffer_size = 0;            // length of a ring, a multiple of block_size
  AlignedVector<T> buffer_left;   // ring of the left channel
  AlignedVector<T> buffer_right;  // ring of the right channel
  int delay_offset_left = 0;      // samples, at the end of the last block
  int delay_offset_right = 0;     // samples, at the end of the last block
  float gain_dB_left = 0;         // at the end of the last block
  float gain_dB_right = 0;        // at the end of the last block
  int write_index_left = 0;       // where the next block goes
  int write_index_right = 0;      // where the next block goes
  AlignedVector<T> fade_table;    // block_size + 1 values, cosine from 1 to about 0
};
