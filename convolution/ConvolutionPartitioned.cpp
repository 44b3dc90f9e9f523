// The uniformly partitioned convolver: partition spectra, delay line of spectra, overlap-add.
#include "convolution/ConvolutionPartitioned.h"

#include <algorithm>
#include <cassert>

#include "convolution/Ring.h"
#include "numeric/VectorizedFunctions.h"

namespace {

// Asks for the first bins of a slice, up to 4 KiB, ahead of their use. Each partition's slice lies
// at a place of its own, where the processor's own read-ahead begins anew.
void prefetch(const complex* bins, int count) {
  constexpr int kLine = 64 / sizeof(complex);
  const int end = std::min(count, 64 * kLine);
  for (int b = 0; b < end; b += kLine) __builtin_prefetch(bins + b);
}

}  // namespace

template <class T>
ConvolutionPartitioned<T>::ConvolutionPartitioned(int block_size_, const AlignedVector<T>& h) {
  update(block_size_, h);
}

template <class T>
void ConvolutionPartitioned<T>::update(int block_size_, const AlignedVector<T>& h) {
  assert(block_size_ > 0 && !h.empty());
  block_size = block_size_;
  fir_size = static_cast<int>(h.size());
  M_p = FFTWrap<T>::FFT_next_fast_size_lib(2 * block_size - 1);
  M_p_half = M_p / 2 + 1;
  N_partitions = (fir_size + block_size - 1) / block_size;

  block_buffer = AlignedVector<T>(static_cast<std::size_t>(M_p));
  const AlignedVector<complex> silence(static_cast<std::size_t>(M_p_half));
  Y = silence;
  fft.update(M_p);

  const auto partitions = static_cast<std::size_t>(N_partitions);
  H = AlignedVector<AlignedVector<complex>>(partitions, silence);
  for (int i = 0; i < N_partitions; ++i) {
    const int first_tap = i * block_size;
    std::fill(block_buffer.begin(), block_buffer.end(), T(0));
    std::copy_n(h.data() + first_tap, std::min(fir_size - first_tap, block_size),
                block_buffer.data());
    fft.forward_real_2_cpx(block_buffer, H[static_cast<std::size_t>(i)]);
  }

  x_index = 0;
  X = AlignedVector<AlignedVector<complex>>(partitions, silence);
  ring_size = M_p + block_size - 1;
  ring_size -= ring_size % block_size;
  ring_position = 0;
  ring = AlignedVector<T>(static_cast<std::size_t>(ring_size));
}

template <class T>
void ConvolutionPartitioned<T>::process(const AlignedVector<T>& x, AlignedVector<T>& y) {
  process_X(x);
  for (int p = 0; p < N_partitions; ++p) process_partition(p, 0, M_p_half);
  process_Y(y);
}

template <class T>
void ConvolutionPartitioned<T>::process_X(const AlignedVector<T>& x) {
  x_index = (x_index + 1) % N_partitions;
  std::copy_n(x.data(), block_size, block_buffer.data());
  std::fill(block_buffer.begin() + block_size, block_buffer.end(), T(0));
  fft.forward_real_2_cpx(block_buffer, X[static_cast<std::size_t>(x_index)]);
  std::fill(Y.begin(), Y.end(), complex(0));
}

// First the slice two partitions on is asked for: responses of seconds outgrow the caches.
template <class T>
void ConvolutionPartitioned<T>::process_partition(int partition, int first_bin, int bin_count) {
  const int count = std::min(first_bin + bin_count, M_p_half) - first_bin;
  const int ahead = partition + 2;
  if (ahead < N_partitions) {
    prefetch(input_spectrum(ahead) + first_bin, count);
    prefetch(H[static_cast<std::size_t>(ahead)].data() + first_bin, count);
  }
  VectorizedFunctions<T>::cpx_mult_inplace_add_fastest(
      Y.data() + first_bin, input_spectrum(partition) + first_bin,
      H[static_cast<std::size_t>(partition)].data() + first_bin, count);
}

template <class T>
void ConvolutionPartitioned<T>::process_Y(AlignedVector<T>& y) {
  fft.inverse_cpx_2_real(block_buffer, Y);
  // The whole transform is added, also where it is longer than the 2 * block_size - 1 samples of
  // the linear convolution and holds only rounding noise.
  ring_add(ring, ring_position, block_buffer.data(), M_p);
  ring_take(ring, ring_position, y.data(), block_size);
}

template <class T>
void ConvolutionPartitioned<T>::flush() {
  std::fill(ring.begin(), ring.end(), T(0));
  std::fill(block_buffer.begin(), block_buffer.end(), T(0));
  std::fill(Y.begin(), Y.end(), complex(0));
  for (auto& spectrum : X) std::fill(spectrum.begin(), spectrum.end(), complex(0));
}

template class ConvolutionPartitioned<float>;
