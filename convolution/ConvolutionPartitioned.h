// Convolution of a stream of fixed-size blocks with a response cut into partitions of one block.
#pragma once

#include <memory>

#include "numeric/AlignedVector.h"
#include "numeric/FFTWrap.h"
#include "numeric/SpectrumBlocks.h"

// Uniformly partitioned overlap-add convolution with a delay line of spectra. A block costs one
// forward and one inverse transform and one complex multiply-add per partition, and its output
// already contains it: the class adds no latency.
//
// Any block size and any response of at least one tap will do. Construction and update allocate;
// process, its three steps and flush neither allocate nor lock. Arrays are used through their
// storage and never resized. One object serves one thread at a time.
//
// Method: Stockham 1966 (fast convolution by blocks); Soo and Pang 1990 (delay line of spectra).
template <class T>
class ConvolutionPartitioned {
 public:
  ConvolutionPartitioned() = default;  // unusable until update
  ConvolutionPartitioned(int block_size, const AlignedVector<T>& h);
  ConvolutionPartitioned(const ConvolutionPartitioned&) = delete;
  ConvolutionPartitioned& operator=(const ConvolutionPartitioned&) = delete;

  // Derives everything from the response h and starts from silence.
  void update(int block_size, const AlignedVector<T>& h);
  // The same for the response of `other`: both hold one copy of its spectra from now on.
  void update(const ConvolutionPartitioned& other);

  // Reads block_size samples from x and writes as many to y; both may be the same array.
  void process(const AlignedVector<T>& x, AlignedVector<T>& y);

  // The steps of process, for callers that spread the multiply-adds over time. Per block: one
  // process_X, then process_partition until each bin of each partition had its turn once, then
  // one process_Y. Within a bin the partitions are to come in ascending order; the division into
  // runs of bins is free and does not change the result.
  void process_X(const AlignedVector<T>& x);
  void process_partition(int partition, int first_bin, int bin_count);
  // process_X of the block that `source`, of the same block size, had `age` blocks ago, without its
  // transform; age is below the partitions of the source.
  void process_X_of(const ConvolutionPartitioned& source, int age);
  // The same bits as process_partition for each partition in ascending order, in one pass.
  void process_bins(int first_bin, int bin_count);
  // process_bins of two objects of one response; one pass when they took in as many blocks.
  static void process_bins_of_pair(ConvolutionPartitioned& a, ConvolutionPartitioned& b,
                                   int first_bin, int bin_count);
  void process_Y(AlignedVector<T>& y);

  // Forgets the signal; the response stays.
  void flush();

  int get_M_p() const { return M_p; }
  int get_M_p_half() const { return M_p_half; }
  int get_N_partitions() const { return N_partitions; }

 private:
  void allocate_signal_memory();
  // Row of X that holds the block of `age` blocks ago, which meets row `age` of H. The ring runs
  // backwards through the rows, so that ages ascend as the rows do.
  int x_row(int age) const { return (N_partitions - 1 - x_index + age) % N_partitions; }

  int block_size = 0;    // samples per block and taps per partition
  int fir_size = 0;      // taps of the response
  int M_p = 0;           // transform length, at least 2 * block_size - 1
  int M_p_half = 0;      // bins per spectrum
  int N_partitions = 0;  // partitions of the response
  int ring_size = 0;     // M_p rounded up to whole blocks
  FFTWrap<T> fft;
  AlignedVector<T> block_buffer;            // M_p samples, padded block or inverse result
  AlignedVector<complex> Y;                 // M_p_half bins, spectrum of the output block
  int x_index = 0;                          // slot of X that holds the newest block
  SpectrumBlocks X;                         // spectra of the last N_partitions blocks, a ring
  std::shared_ptr<const SpectrumBlocks> H;  // spectra of the partitions
  int ring_position = 0;                    // next block to leave ring, a multiple of block_size
  AlignedVector<T> ring;                    // ring_size samples of overlapping output
};
