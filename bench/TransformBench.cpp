// Real transforms by length: every engine variant that this processor has, beside FFTW3f planned
// with FFTW_MEASURE when it is installed. Each of ours is checked against the defining sum first.
// A table of the medians and their ratio closes the run.
#include <benchmark/benchmark.h>
#ifdef TOLMARA_BENCH_FFTW
#include <fftw3.h>
#endif

#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "numeric/dft/Engine.h"
#include "numeric/dft/ippDFT.h"

namespace {

struct Free {
  void operator()(void* p) const { ippFree(p); }
};
template <class T>
using Block = std::unique_ptr<T, Free>;

// A transform with its buffers.
class Ours {
 public:
  Ours(int n, int variant) : length(n) {
    ippJumpIndexForMergedLibs = variant;
    int spec_size = 0, init_size = 0, work_size = 0;
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

  int length;
  Block<Ipp8u> spec_block, work;
  Block<float> time, bins;
};

void run_ours(benchmark::State& state, int n, int variant, bool inverse) {
  Ours dft(n, variant);
  if (!dft.right()) return state.SkipWithError("wrong result");
  for (auto _ : state) {
    inverse ? dft.inverse() : dft.forward();
    benchmark::ClobberMemory();
  }
}

#ifdef TOLMARA_BENCH_FFTW
void run_fftw(benchmark::State& state, int n, bool inverse) {
  float* time = fftwf_alloc_real(static_cast<std::size_t>(n));
  fftwf_complex* bins = fftwf_alloc_complex(static_cast<std::size_t>(n / 2 + 1));
  const fftwf_plan plan = inverse ? fftwf_plan_dft_c2r_1d(n, bins, time, FFTW_MEASURE)
                                  : fftwf_plan_dft_r2c_1d(n, time, bins, FFTW_MEASURE);
  // Zeros: its inverse destroys its input, and repeated runs must not drift to subnormals.
  for (int t = 0; t < n; ++t) time[t] = 0.0F;
  for (int k = 0; k <= n / 2; ++k) bins[k][0] = bins[k][1] = 0.0F;
  for (auto _ : state) {
    fftwf_execute(plan);
    benchmark::ClobberMemory();
  }
  fftwf_destroy_plan(plan);
  fftwf_free(time);
  fftwf_free(bins);
}
#endif

// Collects the medians for the closing table.
class Reporter : public benchmark::ConsoleReporter {
 public:
  Reporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == "median") {
        medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
      }
    }
  }
  void Finalize() override {
    std::printf("\nours over FFTW3f, medians:\n");
    for (const auto& [name, ns] : medians) {
      const auto peer = medians.find(name.substr(0, name.find('/')) + "/fftw");
      if (peer == medians.end() || peer->first == name) continue;
      std::printf("%-36s %12.1f ns %12.1f ns %6.2f\n", name.c_str(), ns, peer->second,
                  ns / peer->second);
    }
  }

 private:
  std::map<std::string, double> medians;
};

void add(const std::string& name, const auto& body) {
  benchmark::RegisterBenchmark(name.c_str(), body)
      ->MinTime(0.01)
      ->Repetitions(7)
      ->ReportAggregatesOnly();
}

void add_length(int n) {
  for (const bool inverse : {false, true}) {
    char prefix[32];
    std::snprintf(prefix, sizeof prefix, "%s %7d", inverse ? "inv" : "fwd", n);
#ifdef TOLMARA_BENCH_FFTW
    add(std::string(prefix) + "/fftw", [=](benchmark::State& s) { run_fftw(s, n, inverse); });
#endif
    for (int v = dft::best_engine(); v >= 0; --v) {
      if (v < dft::best_engine() && dft::engines[v] == dft::engines[v + 1]) continue;
      add(std::string(prefix) + "/ours" + std::to_string(v),
          [=](benchmark::State& s) { run_ours(s, n, v, inverse); });
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (int n = 64; n <= 32768; n *= 2) add_length(n);
  for (const int n : {63, 882, 960, 1029, 1125, 4410, 1 << 17, 1 << 20}) add_length(n);
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return EXIT_SUCCESS;
}
