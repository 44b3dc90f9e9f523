// The analysis of an impulse response into frames and bins.
#include "display/FIRSpectrogram.h"

#include <algorithm>
#include <cmath>

#include "dsp/FIRFunctions.h"
#include "numeric/Convert.h"

template <class T>
FIRSpectrogram<T>::FIRSpectrogram(int sample_rate_, const AlignedVector<T>& fir_, WindowType type,
                                  int window_size_, int overlap_, int fft_size_min, T epsilon) {
  update(sample_rate_, fir_, type, window_size_, overlap_, fft_size_min, epsilon);
}

template <class T>
void FIRSpectrogram<T>::update(int sample_rate_, const AlignedVector<T>& fir_, WindowType type,
                               int window_size_, int overlap_, int fft_size_min, T epsilon) {
  sample_rate = sample_rate_;
  window_size = window_size_;
  overlap = std::min(window_size - 1, overlap_);
  hop = window_size - overlap;
  fir_size = static_cast<int>(fir_.size());
  fft_size = FFTWrap<T>::FFT_next_fast_size_lib(std::max(window_size, fft_size_min));
  num_half_bins = fft_size / 2 + 1;
  window_type = type;
  compute_window(window, type, window_size);
  frame = AlignedVector<T>(static_cast<std::size_t>(fft_size));
  spectrum = AlignedVector<complex>(static_cast<std::size_t>(num_half_bins));
  fft.update(fft_size);
  if (&fir_ != &fir) fir = fir_;
  fir_peak = 0;
  for (const T sample : fir) fir_peak = std::max(fir_peak, std::abs(sample));

  num_frames = static_cast<int>(std::ceil(static_cast<T>(fir_size) / static_cast<T>(hop)));
  const auto frames = static_cast<std::size_t>(num_frames);
  const AlignedVector<T> empty(static_cast<std::size_t>(num_half_bins));
  density = AlignedVector<AlignedVector<T>>(frames, empty);
  density_dB = density;
  // kept: the minimum starts at 0, the value of the empty grid, and so never rises. Colours are
  // scaled from there, and a response must look as it always has.
  min_density = 0;
  max_density = 0;
  for (std::size_t j = 0; j < frames; ++j) analyse_frame(j, epsilon);
}

template <class T>
void FIRSpectrogram<T>::analyse_frame(std::size_t j, T epsilon) {
  const int start = static_cast<int>(j) * hop;
  std::fill(frame.begin(), frame.end(), T(0));
  std::copy_n(fir.data() + start, std::min(window_size, fir_size - start), frame.data());
  for (std::size_t i = 0; i < window.size(); ++i) frame[i] *= window[i];
  fft.forward_real_2_cpx(frame, spectrum);

  AlignedVector<T>& power = density[j];
  for (std::size_t k = 0; k < power.size(); ++k) {
    const T magnitude = std::hypot(spectrum[k].real(), spectrum[k].imag()) + epsilon;
    power[k] = magnitude * magnitude;
    density_dB[j][k] = mag_to_dB(magnitude);
  }
  const auto [smallest, largest] = std::minmax_element(power.begin(), power.end());
  min_density = std::min(min_density, *smallest);
  max_density = std::max(max_density, *largest);
}

template <class T>
void FIRSpectrogram<T>::compute_window(AlignedVector<T>& window_, WindowType type, int size) {
  window_ = AlignedVector<T>(static_cast<std::size_t>(size));
  if (type == Rectangular) std::fill(window_.begin(), window_.end(), T(1));
  if (type != Blackman) return;
  const double d = static_cast<T>(size - 1);
  const int half = static_cast<int>(std::ceil(size * 0.5));
  for (int i = 0; i < half; ++i) {
    // The constant is 0.42 in single precision.
    const double w = 0.41999998688697815 - 0.5 * std::cos(6.283185307179586 * i / d) +
                     0.08 * std::cos(12.566370614359172 * i / d);
    window_[static_cast<std::size_t>(i)] = static_cast<T>(w);
  }
  std::reverse_copy(window_.begin(), window_.begin() + size / 2, window_.begin() + half);
}

template <class T>
T FIRSpectrogram<T>::get_max_time() const {
  return static_cast<T>(fir_size) / static_cast<T>(sample_rate);
}

template <class T>
T FIRSpectrogram<T>::get_min_timestep() const {
  return static_cast<T>(hop) / static_cast<T>(sample_rate);
}

template <class T>
int FIRSpectrogram<T>::time_to_bin_idx(T seconds) const {
  const T index = std::floor(seconds * static_cast<T>(sample_rate) / static_cast<T>(hop));
  return std::max(std::min(saturate_to_int(index), num_frames - 1), 0);
}

template <class T>
const AlignedVector<T>& FIRSpectrogram<T>::get_half_density(T seconds) const {
  return density[static_cast<std::size_t>(time_to_bin_idx(seconds))];
}

template <class T>
const AlignedVector<T>& FIRSpectrogram<T>::get_half_density_dB(T seconds) const {
  return density_dB[static_cast<std::size_t>(time_to_bin_idx(seconds))];
}

template class FIRSpectrogram<float>;
