// Zero-latency convolution of a stream of blocks with a long response.
#pragma once

#include <memory>

#include "convolution/ConvolutionPartitioned.h"
#include "numeric/AlignedVector.h"

// Convolution by levels of growing partition size: the early taps go through short transforms that
// answer in the same call, the late ones through long transforms whose output is due many calls
// later and whose multiply-adds are spread evenly over the calls that their block spans. The first
// output sample of a call contains the first input sample of that call.
//
// Any block size and any response of at least one tap will do. Construction allocates; process and
// flush neither allocate nor lock, and all work happens inside them on the caller's thread. One
// object serves one response and one thread at a time.
//
// Method: Gardner 1995; Garcia 2002 (choice of the partition sizes).
template <class T>
class ConvolutionPartitionedNonuniform {
 public:
  ConvolutionPartitionedNonuniform() = default;  // unusable

  // max_fft_pow bounds the partitions to block_size << max_fft_pow samples, -1 leaves them
  // unbounded; other values count modulo 32. It moves cost, not sound.
  ConvolutionPartitionedNonuniform(int block_size, const AlignedVector<T>& h, int max_fft_pow);
  ConvolutionPartitionedNonuniform(const ConvolutionPartitionedNonuniform&) = delete;
  ConvolutionPartitionedNonuniform& operator=(const ConvolutionPartitionedNonuniform&) = delete;

  // A silent convolver of the same response: both hold one copy of its spectra.
  std::unique_ptr<ConvolutionPartitionedNonuniform> twin() const;

  // Builds levels and rings. A new response takes a new object: only the constructor calls this.
  void update(int block_size, const AlignedVector<T>& h, int max_fft_pow);

  // Reads block_size samples from x and writes as many to y; both may be the same array.
  void process(const AlignedVector<T>& x, AlignedVector<T>& y);

  // process of a convolver and its twin, each with its own signal, bit for bit. Reads each spectrum
  // of the response once for both when they have had the same number of calls.
  static void process_pair(ConvolutionPartitionedNonuniform& left,
                           ConvolutionPartitionedNonuniform& right, const AlignedVector<T>& x_left,
                           AlignedVector<T>& y_left, const AlignedVector<T>& x_right,
                           AlignedVector<T>& y_right);

  // Forgets the signal; the response stays, and the levels keep step.
  void flush();

 private:
  // One level: a run of taps, convolved in blocks of its own.
  struct FDL {
    FDL() = default;
    FDL(int block, const AlignedVector<T>& h, int delay, int N);
    explicit FDL(const FDL& model);  // silent, of the same response
    void flush();

    std::unique_ptr<ConvolutionPartitioned<T>> conv;
    int block = 0;                // samples per block of this level, a multiple of block_size
    int delay = 0;                // half the first tap: samples back to the input, on to the output
    int M_p_half = 0;             // bins per spectrum
    int N_partitions = 0;         // partitions of the level
    AlignedVector<T> x;           // block samples, captured input
    AlignedVector<T> y;           // block samples, finished output
    int phase = 0;                // calls already worked on the present block
    int phase_count = 0;          // calls that a block spans
    int capture_position = 0;     // y_position at capture, for inspection only
    int write_position = 0;       // where in y_ring the finished block goes
    const FDL* source = nullptr;  // an earlier level that already transformed the same input,
    int source_age = 0;           // this many of its blocks ago
  };

  struct BinRange {
    int first, count;
  };

  void add_level(int block, int tap_count, const AlignedVector<T>& h, int first_tap);
  void add_level(std::unique_ptr<FDL> level);
  void find_source(FDL& level) const;
  void capture(FDL& level);
  void begin(const AlignedVector<T>& x);
  static BinRange share(const FDL& level);
  static void accumulate(FDL& level);
  static void accumulate_pair(FDL& a, FDL& b);
  void end(AlignedVector<T>& y);
  void finish(FDL& level);

  int block_size = 0;   // samples per call
  int fir_size = 0;     // taps of the response
  int x_ring_size = 0;  // fir_size rounded up to whole blocks
  int y_ring_size = 0;  // twice the largest level block, plus one block
  int level_count = 0;
  AlignedVector<std::unique_ptr<FDL>> levels;  // first taps first
  int x_position = 0;                          // where the next block enters x_ring
  AlignedVector<T> x_ring;                     // the last x_ring_size input samples
  int y_position = 0;                          // where the next block leaves y_ring
  AlignedVector<T> y_ring;                     // sum of the levels' output, waiting for its time

  friend struct ConvolutionScheduleProbe;  // reads the schedule in tests
};
