// The uniformly partitioned convolver: partition spectra, delay line of spectra, overlap-add.
#include "convolution/ConvolutionPartitioned.h"

#include <algorithm>
#include <cassert>

#include "convolution/Ring.h"
#include "numeric/VectorizedFunctions.h"

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
  allocate_signal_memory();

  const auto spectra = std::make_shared<SpectrumBlocks>(N_partitions, M_p_half);
  AlignedVector<complex> spectrum(static_cast<std::size_t>(M_p_half));
  for (int i = 0; i < N_partitions; ++i) {
    const int first_tap = i * block_size;
    std::fill(block_buffer.begin(), block_buffer.end(), T(0));
    std::copy_n(h.data() + first_tap, std::min(fir_size - first_tap, block_size),
                block_buffer.data());
    fft.forward_real_2_cpx(block_buffer, spectrum);
    spectra->put(i, spectrum.data());
  }
  H = spectra;
}

template <class T>
void ConvolutionPartitioned<T>::update(const ConvolutionPartitioned& other) {
  block_size = other.block_size;
  fir_size = other.fir_size;
  M_p = other.M_p;
  M_p_half = other.M_p_half;
  N_partitions = other.N_partitions;
  allocate_signal_memory();
  H = other.H;
}

template <class T>
void ConvolutionPartitioned<T>::allocate_signal_memory() {
  block_buffer = AlignedVector<T>(static_cast<std::size_t>(M_p));
  Y = AlignedVector<complex>(static_cast<std::size_t>(M_p_half));
  fft.update(M_p);
  x_index = 0;
  X = SpectrumBlocks(N_partitions, M_p_half);
  ring_size = M_p + block_size - 1;
  ring_size -= ring_size % block_size;
  ring_position = 0;
  ring = AlignedVector<T>(static_cast<std::size_t>(ring_size));
}

template <class T>
void ConvolutionPartitioned<T>::process(const AlignedVector<T>& x, AlignedVector<T>& y) {
  process_X(x);
  process_bins(0, M_p_half);
  process_Y(y);
}

template <class T>
void ConvolutionPartitioned<T>::process_X(const AlignedVector<T>& x) {
  x_index = (x_index + 1) % N_partitions;
  std::copy_n(x.data(), block_size, block_buffer.data());
  std::fill(block_buffer.begin() + block_size, block_buffer.end(), T(0));
  fft.forward_real_2_cpx(block_buffer, Y);
  X.put(x_row(0), Y.data());
  std::fill(Y.begin(), Y.end(), complex(0));
}

template <class T>
void ConvolutionPartitioned<T>::process_X_of(const ConvolutionPartitioned& source, int age) {
  x_index = (x_index + 1) % N_partitions;
  X.copy(x_row(0), source.X, source.x_row(age));
  std::fill(Y.begin(), Y.end(), complex(0));
}

template <class T>
void ConvolutionPartitioned<T>::process_partition(int partition, int first_bin, int bin_count) {
  constexpr int kRun = 64;  // a multiple of four, which leaves strict products to the range's end
  complex x[kRun], h[kRun];
  const int last = std::min(first_bin + bin_count, M_p_half);
  for (int bin = first_bin; bin < last; bin += kRun) {
    const int count = std::min(kRun, last - bin);
    for (int i = 0; i < count; ++i) {
      x[i] = X.at(x_row(partition), bin + i);
      h[i] = H->at(partition, bin + i);
    }
    VectorizedFunctions<T>::cpx_mult_inplace_add_fastest(Y.data() + bin, x, h, count);
  }
}

template <class T>
void ConvolutionPartitioned<T>::process_bins(int first_bin, int bin_count) {
  const int count = std::min(bin_count, M_p_half - first_bin);
  const SpectrumChannel channel{Y.data(), &X};
  add_products({&channel, 1}, x_row(0), *H, first_bin, count);
}

template <class T>
void ConvolutionPartitioned<T>::process_bins_of_pair(ConvolutionPartitioned& a,
                                                     ConvolutionPartitioned& b, int first_bin,
                                                     int bin_count) {
  if (a.x_index != b.x_index) {
    a.process_bins(first_bin, bin_count);
    b.process_bins(first_bin, bin_count);
    return;
  }
  const int count = std::min(bin_count, a.M_p_half - first_bin);
  const SpectrumChannel channels[] = {{a.Y.data(), &a.X}, {b.Y.data(), &b.X}};
  add_products(channels, a.x_row(0), *a.H, first_bin, count);
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
  X.clear();
}

template class ConvolutionPartitioned<float>;
