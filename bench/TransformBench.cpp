// Real transforms by length: every engine variant that this processor has, beside FFTW3f when it is
// installed. The peer is the fastest way to a real transform that FFTW offers at even lengths: a
// complex plan of half the length, and a plain recombination of our own. It is planned twice, with
// AVX and held to SSE2, and each variant is compared with the peer of its width. All run in turns,
// and the best time of each counts. Each of ours is checked against the defining sum first.
//
//   TransformBench            the default lengths
//   TransformBench 64 960     these lengths; odd ones have no peer
#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "numeric/dft/Engine.h"
#include "numeric/dft/ippDFT.h"

#ifdef TOLMARA_BENCH_FFTW
#include <fftw3.h>

// FFTW asks this function of its own, when it makes a planner, whether to use AVX. A program's
// definition comes before a library's.
static int peer_may_use_avx = 1;
extern "C" [[gnu::visibility("default")]] int fftwf_have_simd_avx() { return peer_may_use_avx; }
#endif

namespace {

struct Free {
  void operator()(void* p) const { ippFree(p); }
};
template <class T>
using Block = std::unique_ptr<T, Free>;

// A transform with its buffers.
class Ours {
 public:
  Ours(int n, int variant) : length(n), index(variant) {
    int spec_size = 0, init_size = 0, work_size = 0;
    ippJumpIndexForMergedLibs = index;
    ippsDFTGetSize_R_32f(n, IPP_FFT_DIV_INV_BY_N, 2, &spec_size, &init_size, &work_size);
    spec_block.reset(ippsMalloc_8u(spec_size));
    work.reset(ippsMalloc_8u(work_size));
    const Block<Ipp8u> init(ippsMalloc_8u(init_size));
    ippsDFTInit_R_32f(n, IPP_FFT_DIV_INV_BY_N, 2, spec(), init.get());
    time.reset(ippsMalloc_32f(n));
    bins.reset(ippsMalloc_32f(n + 2));
    for (int t = 0; t < n; ++t) time.get()[t] = std::sin(0.1F * static_cast<float>(t * t % 977));
  }
  void forward() { ippsDFTFwd_RToCCS_32f(time.get(), bins.get(), spec(), work.get()); }
  void inverse() { ippsDFTInv_CCSToR_32f(bins.get(), time.get(), spec(), work.get()); }

  // Two bins by their sums.
  bool right() {
    ippJumpIndexForMergedLibs = index;
    forward();
    double error = 0.0, size = 0.0;
    for (const int k : {1, length / 3}) {
      std::complex<double> sum;
      for (int t = 0; t < length; ++t) {
        const auto turn = static_cast<double>(static_cast<long>(t) * k % length) / length;
        sum += std::polar<double>(time.get()[t], -2 * std::numbers::pi * turn);
        size += time.get()[t] * time.get()[t];
      }
      error += std::norm(sum - std::complex<double>(bins.get()[2 * k], bins.get()[2 * k + 1]));
    }
    return std::sqrt(error / size) < 4e-7 * std::log2(length);
  }

 private:
  IppsDFTSpec_R_32f* spec() { return reinterpret_cast<IppsDFTSpec_R_32f*>(spec_block.get()); }

  int length, index;
  Block<Ipp8u> spec_block, work;
  Block<float> time, bins;
};

#ifdef TOLMARA_BENCH_FFTW
struct Floats2 {
  typedef float Vector __attribute__((vector_size(8), aligned(4), may_alias));
  typedef int Order __attribute__((vector_size(8)));
};
struct Floats4 {
  typedef float Vector __attribute__((vector_size(16), aligned(4), may_alias));
  typedef int Order __attribute__((vector_size(16)));
};
struct Floats8 {
  typedef float Vector __attribute__((vector_size(32), aligned(4), may_alias));
  typedef int Order __attribute__((vector_size(32)));
};

// From the bins z of the pairs of samples to those of the samples, or back: X[k] = s + t and
// X[h - k] = conj(s - t), where s is the sum of z[k] and conj z[h - k], scaled, and t their
// difference times a weight. Several bins at once, in interleaved pairs; the weights' real parts
// stand twice, the imaginary ones with both signs.
template <class Floats>
[[gnu::always_inline]] inline int recombine(const float* src, float* dst, const float* weights,
                                            int h, float scale, int k) {
  using Vector = typename Floats::Vector;
  constexpr int L = sizeof(Vector) / sizeof(float);
  typename Floats::Order swap, reverse;
  Vector conj;
  for (int i = 0; i < L; ++i) {
    swap[i] = i ^ 1;
    reverse[i] = L - 2 - i + 2 * (i % 2);
    conj[i] = i % 2 == 0 ? 1.0F : -1.0F;
  }
  for (; k + L / 2 <= (h + 1) / 2; k += L / 2) {
    const int m = h - k - L / 2 + 1;
    const Vector a = *reinterpret_cast<const Vector*>(src + 2 * k);
    const Vector b = __builtin_shuffle(*reinterpret_cast<const Vector*>(src + 2 * m), reverse);
    const Vector c = b * conj, s = (a + c) * scale, d = a - c;
    const Vector w_re = *reinterpret_cast<const Vector*>(weights + 2 * k);
    const Vector w_im = *reinterpret_cast<const Vector*>(weights + 2 * (h + k));
    const Vector t = d * w_re + __builtin_shuffle(d, swap) * w_im;
    *reinterpret_cast<Vector*>(dst + 2 * k) = s + t;
    *reinterpret_cast<Vector*>(dst + 2 * m) = __builtin_shuffle((s - t) * conj, reverse);
  }
  return k;
}

using Recombine = void(const float* src, float* dst, const float* weights, int h, float scale);
void recombine_sse2(const float* src, float* dst, const float* weights, int h, float scale) {
  recombine<Floats2>(src, dst, weights, h, scale,
                     recombine<Floats4>(src, dst, weights, h, scale, 1));
}
[[gnu::target("avx2,fma")]] void recombine_avx(const float* src, float* dst, const float* weights,
                                               int h, float scale) {
  const int done = recombine<Floats8>(src, dst, weights, h, scale, 1);
  recombine<Floats2>(src, dst, weights, h, scale,
                     recombine<Floats4>(src, dst, weights, h, scale, done));
}

class Peer {
 public:
  Peer(int n, bool avx) : h(n / 2), separate(avx ? recombine_avx : recombine_sse2) {
    const auto floats = static_cast<std::size_t>(n) + 2;
    for (float** p : {&time, &bins, &z}) *p = fftwf_alloc_real(floats);
    to_bins = fftwf_plan_dft_1d(h, cx(time), cx(z), FFTW_FORWARD, FFTW_PATIENT);
    to_time = fftwf_plan_dft_1d(h, cx(z), cx(time), FFTW_BACKWARD, FFTW_PATIENT);
    for (int t = 0; t < n; ++t) time[t] = std::sin(0.1F * static_cast<float>(t * t % 977));
    for (int k = 0; k < h; ++k) {
      const std::complex<double> root = std::polar(1.0, -std::numbers::pi * k / h);
      put_weight(forward_weights, k, std::complex(0.0, -0.5) * root);
      put_weight(inverse_weights, k, std::complex(0.0, 0.5 / h) * std::conj(root));
    }
  }
  ~Peer() {
    for (float* p : {time, bins, z}) fftwf_free(p);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void forward() {
    fftwf_execute(to_bins);
    separate(z, bins, forward_weights.data(), h, 0.5F);
    bins[0] = z[0] + z[1];
    bins[2 * h] = z[0] - z[1];
    bins[1] = bins[2 * h + 1] = 0.0F;
    middle(z, bins, 1.0F);
  }
  void inverse() {
    const float scale = 0.5F / static_cast<float>(h);
    separate(bins, z, inverse_weights.data(), h, scale);
    z[0] = (bins[0] + bins[2 * h]) * scale;
    z[1] = (bins[0] - bins[2 * h]) * scale;
    middle(bins, z, 2.0F * scale);
    fftwf_execute(to_time);
  }
  // How far there and back leads from the start.
  float error() {
    float worst = 0.0F;
    const std::vector<float> start(time, time + 2 * h);
    forward();
    inverse();
    for (int t = 0; t < 2 * h; ++t) {
      worst = std::max(worst, std::abs(time[t] - start[static_cast<std::size_t>(t)]));
    }
    return worst;
  }

 private:
  static fftwf_complex* cx(float* p) { return reinterpret_cast<fftwf_complex*>(p); }
  void put_weight(std::vector<float>& weights, int k, std::complex<double> w) {
    weights.resize(static_cast<std::size_t>(4 * h));
    float* at = weights.data() + 2 * k;
    at[0] = at[1] = static_cast<float>(w.real());
    at[2 * h] = static_cast<float>(-w.imag());
    at[2 * h + 1] = static_cast<float>(w.imag());
  }
  void middle(const float* from, float* to, float scale) const {
    if (h % 2 != 0) return;
    to[h] = from[h] * scale;
    to[h + 1] = -from[h + 1] * scale;
  }

  int h;
  Recombine* separate;
  std::vector<float> forward_weights, inverse_weights;
  float *time, *bins, *z;
  fftwf_plan to_bins, to_time;
};
#endif

// A transform, and the runner before it that it is compared with: -1 for none.
struct Runner {
  const char* name;
  int peer;
  std::function<void()> prepare, forward, inverse;
};

double seconds(const std::function<void()>& call, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

// The best time per call of each, in nanoseconds, all taking turns.
std::vector<double> best_times(const std::vector<Runner>& runners, bool inverse) {
  constexpr int kRounds = 200;
  constexpr double kTurn = 40e-6;
  std::vector<double> best(runners.size(), 1.0);
  for (int round = 0; round < kRounds; ++round) {
    for (std::size_t i = 0; i < runners.size(); ++i) {
      const auto& call = inverse ? runners[i].inverse : runners[i].forward;
      runners[i].prepare();
      call();
      best[i] = std::min(best[i], seconds(call, 1 + static_cast<int>(kTurn / best[i])));
    }
  }
  for (double& time : best) time *= 1e9;
  return best;
}

// Ratios of one variant to its peer.
struct Ratios {
  double sum = 0.0, worst = 0.0;
  int count = 0;

  void add(double ratio) {
    sum += std::log(ratio);
    worst = std::max(worst, ratio);
    ++count;
  }
};

class Table {
 public:
  void run(int n, const std::vector<Runner>& runners) {
    for (const bool inverse : {false, true}) {
      const std::vector<double> times = best_times(runners, inverse);
      std::printf("%s %8d", inverse ? "inv" : "fwd", n);
      for (std::size_t i = 0; i < runners.size(); ++i) {
        const Runner& r = runners[i];
        std::printf("  %s %.1f", r.name, times[i]);
        if (r.peer < 0) continue;
        const double ratio = times[i] / times[static_cast<std::size_t>(r.peer)];
        std::printf(" (%.2f)", ratio);
        const bool short_power = n <= 4096 && (n & (n - 1)) == 0;
        if (short_power) means[std::string(r.name) + ", powers of two to 4096"].add(ratio);
        means[std::string(r.name) + ", all"].add(ratio);
      }
      std::printf("\n");
    }
    std::fflush(stdout);
  }
  void summary() const {
    std::printf("\ngeometric mean and worst of ours over the peer of the same width:\n");
    for (const auto& [name, r] : means) {
      std::printf("%-36s %5.3f %5.2f\n", name.c_str(), std::exp(r.sum / r.count), r.worst);
    }
  }

 private:
  std::map<std::string, Ratios> means;
};

template <class T>
Runner runner(const char* name, int peer, T& transform, std::function<void()> prepare) {
  return {name, peer, std::move(prepare), [&transform] { transform.forward(); },
          [&transform] { transform.inverse(); }};
}

const char* variant_name(int index) {
  return index == 4 ? "avx512" : index == 3 ? "avx2" : "baseline";
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> lengths;
  for (int i = 1; i < argc; ++i) lengths.push_back(std::atoi(argv[i]));
  if (lengths.empty()) {
    for (int n = 64; n <= 32768; n *= 2) lengths.push_back(n);
    for (const int n : {200, 480, 882, 960, 1920, 2000, 14112}) lengths.push_back(n);
  }
  std::map<int, std::vector<Runner>> runners;
#ifdef TOLMARA_BENCH_FFTW
  // Plans stay usable when the planner that made them goes, though FFTW does not promise it.
  std::vector<std::unique_ptr<Peer>> peers;
  for (const bool avx : {false, true}) {
    peer_may_use_avx = avx;
    fftwf_cleanup();
    for (const int n : lengths) {
      if (n % 2 != 0 || (avx && dft::best_engine() < 3)) continue;
      peers.push_back(std::make_unique<Peer>(n, avx));
      if (peers.back()->error() > 1e-5F) return EXIT_FAILURE;
      runners[n].push_back(runner(avx ? "fftw-avx" : "fftw-sse2", -1, *peers.back(), [] {}));
    }
  }
#endif
  std::vector<std::unique_ptr<Ours>> ours;
  Table table;
  for (const int n : lengths) {
    const bool peer = !runners[n].empty();
    for (int v = 0; v <= dft::best_engine(); ++v) {
      if (v > 0 && dft::engines[v] == dft::engines[v - 1]) continue;
      ours.push_back(std::make_unique<Ours>(n, v));
      if (!ours.back()->right()) {
        std::printf("wrong result: length %d, %s\n", n, variant_name(v));
        return EXIT_FAILURE;
      }
      runners[n].push_back(runner(variant_name(v), peer ? v >= 3 : -1, *ours.back(),
                                  [v] { ippJumpIndexForMergedLibs = v; }));
    }
    table.run(n, runners[n]);
  }
  table.summary();
  return EXIT_SUCCESS;
}
