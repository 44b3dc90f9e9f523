// Cost of one block through the convolver, mean and worst call, by response length, block size and
// bound of the partitions; two channels of one response; zita-convolver beside it when installed.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "convolution/ConvolutionPartitionedNonuniform.h"

#ifdef TOLMARA_BENCH_ZITA
#include <zita-convolver.h>
#endif

namespace {

constexpr int kSampleRate = 48000;

struct Setting {
  int N;
  double seconds;
  int max_fft_pow;

  int taps() const { return static_cast<int>(seconds * kSampleRate); }
  // Calls after which the work repeats: those that the largest partition spans.
  int cycle() const {
    int calls = 1;
    while (calls < 1 << max_fft_pow && 4 * calls * N < taps()) calls *= 2;
    return calls;
  }
  std::string name(const char* engine) const {
    return std::string(engine) + "/block:" + std::to_string(N) +
           "/ms:" + std::to_string(static_cast<int>(seconds * 1000)) +
           "/pow:" + std::to_string(max_fft_pow);
  }
};

AlignedVector<float> noise(int size, unsigned seed) {
  std::mt19937 bits(seed);
  AlignedVector<float> x(static_cast<std::size_t>(size));
  for (float& v : x) v = static_cast<float>(bits()) * 0x1p-31F - 1.0F;
  return x;
}

double now_us(clockid_t clock) {
  timespec t{};
  clock_gettime(clock, &t);
  return static_cast<double>(t.tv_sec) * 1e6 + static_cast<double>(t.tv_nsec) * 1e-3;
}

using Block = AlignedVector<float>;
using Process = std::function<void(const Block&, Block&)>;

// Feeds noise and holds the last sample against the defining sum.
bool is_right(const Process& process, const Setting& setting, const AlignedVector<float>& h) {
  const int blocks = (setting.taps() / setting.N + 1) * 5 / 4;
  const AlignedVector<float> x = noise(blocks * setting.N, 2);
  Block in(static_cast<std::size_t>(setting.N));
  Block out(in.size());
  for (std::size_t i = 0; i < x.size(); i += in.size()) {
    std::copy_n(x.data() + i, in.size(), in.data());
    process(in, out);
  }
  double sum = 0.0;
  for (std::size_t k = 0; k < h.size(); ++k) sum += double{h[k]} * x[x.size() - 1 - k];
  return std::abs(sum - out.back()) < 1e-5 * std::sqrt(static_cast<double>(h.size()));
}

// One iteration is a whole cycle of calls. A call's cost is the least seen at its place in the
// cycle, as everything else that the machine does can only add to it.
void run(benchmark::State& state, const Process& process, const Setting& setting,
         const AlignedVector<float>& h) {
  if (!is_right(process, setting, h)) return state.SkipWithError("wrong result");
  const int cycle = setting.cycle();
  const Block in = noise(setting.N, 3);
  Block out(in.size());
  std::vector<double> least(static_cast<std::size_t>(cycle),
                            std::numeric_limits<double>::infinity());
  const double cpu_start = now_us(CLOCK_PROCESS_CPUTIME_ID);
  for (auto _ : state) {
    for (double& cost : least) {
      const double start = now_us(CLOCK_MONOTONIC);
      process(in, out);
      cost = std::min(cost, now_us(CLOCK_MONOTONIC) - start);
    }
  }
  const double cpu = now_us(CLOCK_PROCESS_CPUTIME_ID) - cpu_start;
  const double period_us = 1e6 * setting.N / kSampleRate;
  const double mean = cpu / static_cast<double>(state.iterations()) / cycle;
  state.counters["cpu_us"] = mean;  // all threads, per call
  state.counters["worst_us"] = *std::max_element(least.begin(), least.end());
  state.counters["ms_per_s"] = 1e3 * mean / period_us;
}

void ours(benchmark::State& state, const Setting& setting) {
  const AlignedVector<float> h = noise(setting.taps(), 1);
  ConvolutionPartitionedNonuniform<float> convolver(setting.N, h, setting.max_fft_pow);
  run(
      state, [&](const Block& x, Block& y) { convolver.process(x, y); }, setting, h);
}

// A convolver and its twin, both on the same noise; costs are those of both channels.
void pair(benchmark::State& state, const Setting& setting) {
  using Convolver = ConvolutionPartitionedNonuniform<float>;
  const AlignedVector<float> h = noise(setting.taps(), 1);
  Convolver left(setting.N, h, setting.max_fft_pow);
  const auto right = left.twin();
  Block other(static_cast<std::size_t>(setting.N));
  const auto process = [&](const Block& x, Block& y) {
    Convolver::process_pair(left, *right, x, y, x, other);
  };
  run(state, process, setting, h);
}

#ifdef TOLMARA_BENCH_ZITA
// Its long partitions run on threads of their own, which every call waits for here.
class ZitaRun {
 public:
  ZitaRun(const Setting& setting, AlignedVector<float>& h) {
    const auto size = static_cast<std::uint32_t>(h.size());
    const auto N = static_cast<std::uint32_t>(setting.N);
    const auto largest = std::min<std::uint32_t>(Convproc::MAXPART, N << setting.max_fft_pow);
    is_ready = convproc.configure(1, 1, size, N, N, largest, 0.0F) == 0 &&
               convproc.impdata_create(0, 0, 1, h.data(), 0, static_cast<int>(size)) == 0 &&
               convproc.start_process(0, SCHED_OTHER) == 0;
    // Blocks that come before its threads are up are answered late.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  ~ZitaRun() {
    convproc.stop_process();
    convproc.cleanup();
  }
  ZitaRun(const ZitaRun&) = delete;
  ZitaRun& operator=(const ZitaRun&) = delete;

  bool ready() const { return is_ready; }
  void process(const Block& x, Block& y) {
    std::copy(x.begin(), x.end(), convproc.inpdata(0));
    convproc.process(true);
    std::copy_n(convproc.outdata(0), y.size(), y.data());
  }

 private:
  Convproc convproc;
  bool is_ready = false;
};

void zita(benchmark::State& state, const Setting& setting) {
  AlignedVector<float> h = noise(setting.taps(), 1);
  ZitaRun zita_run(setting, h);
  if (!zita_run.ready()) return state.SkipWithError("zita-convolver refuses the setting");
  run(
      state, [&](const Block& x, Block& y) { zita_run.process(x, y); }, setting, h);
}
#endif

}  // namespace

int main(int argc, char** argv) {
  for (const int N : {32, 64, 128, 256, 512, 1024}) {
    for (const double seconds : {0.1, 1.0, 5.0, 20.0}) {
      for (const int max_fft_pow : {4, 12}) {
        const Setting setting{N, seconds, max_fft_pow};
        benchmark::RegisterBenchmark(setting.name("Ours").c_str(), ours, setting);
        benchmark::RegisterBenchmark(setting.name("Pair").c_str(), pair, setting);
#ifdef TOLMARA_BENCH_ZITA
        benchmark::RegisterBenchmark(setting.name("Zita").c_str(), zita, setting);
#endif
      }
    }
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
