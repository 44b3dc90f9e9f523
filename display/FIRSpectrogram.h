// Short-time Fourier analysis of an impulse response.
#pragma once

#include "numeric/AlignedVector.h"
#include "numeric/FFTWrap.h"

// A grid of frames in time and bins in frequency, as power and in decibels, over a copy of the
// analysed response. Frame j starts at sample j * hop; bin k lies at k * sample_rate / fft_size.
// Powers are those of the unscaled transform.
//
// update and the constructor with arguments allocate; the accessors only read. No locks: the owner
// keeps update and readers apart.
template <class T>
class FIRSpectrogram {
 public:
  // With any other value the window is all zeros.
  enum WindowType : int { Rectangular = 0, Blackman = 1 };

  FIRSpectrogram() = default;  // an empty grid
  FIRSpectrogram(int sample_rate, const AlignedVector<T>& fir, WindowType type, int window_size,
                 int overlap, int fft_size_min, T epsilon);
  FIRSpectrogram(const FIRSpectrogram&) = delete;
  FIRSpectrogram& operator=(const FIRSpectrogram&) = delete;

  // Rebuilds everything for a response of any length. overlap is the count of samples that
  // neighbouring frames share, reduced to window_size - 1; epsilon is added to each magnitude.
  void update(int sample_rate, const AlignedVector<T>& fir, WindowType type, int window_size,
              int overlap, int fft_size_min, T epsilon);

  // Replaces window by size coefficients.
  static void compute_window(AlignedVector<T>& window, WindowType type, int size);

  T get_max_time() const;      // seconds: duration of the response
  T get_min_timestep() const;  // seconds from frame to frame
  // Index of the frame (not bin) at a time, clamped into the grid. An empty grid answers 0, which
  // then must not be looked up.
  int time_to_bin_idx(T seconds) const;
  const AlignedVector<T>& get_half_density(T seconds) const;  // num_half_bins powers
  const AlignedVector<T>& get_half_density_dB(T seconds) const;
  T get_max_density() const { return max_density; }
  T get_min_density() const { return min_density; }
  int get_num_half_bins() const { return num_half_bins; }
  T get_fir_peak() const { return fir_peak; }
  const AlignedVector<T>& get_fir() const { return fir; }

 private:
  void analyse_frame(std::size_t j, T epsilon);

  int sample_rate = 0;  // samples per second
  AlignedVector<T> fir;
  int fir_size = 0;
  T fir_peak = 0;         // largest magnitude of a sample
  int window_size = 0;    // samples per frame
  int overlap = 0;        // samples shared by neighbouring frames
  int hop = 0;            // samples between frame starts, at least 1
  int fft_size = 0;       // at least window_size
  int num_half_bins = 0;  // fft_size / 2 + 1
  int num_frames = 0;
  WindowType window_type = Rectangular;
  FFTWrap<T> fft;
  AlignedVector<T> frame;                      // fft_size samples: windowed, then zeros
  AlignedVector<complex> spectrum;             // num_half_bins
  AlignedVector<T> window;                     // window_size coefficients
  AlignedVector<AlignedVector<T>> density;     // power by frame and bin
  AlignedVector<AlignedVector<T>> density_dB;  // level by frame and bin
  T min_density = 0;                           // 0 for every response
  T max_density = 0;
};
