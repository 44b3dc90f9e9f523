// Time of a render, stage by stage, for rooms of one, three and five axes at the radius cap; the
// lattice table in plain loops, in the narrowest and in the widest vectors beside the limit of the
// processor with 128 bits; the decay with and without flush-to-zero.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <optional>

#include "dsp/FIRFunctions.h"
#include "dsp/FIROrtho.h"
#include "numeric/Float4.h"
#include "numeric/dft/Engine.h"
#include "plugin/FlushToZero.h"

namespace {

using Room = AlignedVector<DimProperties<float>>;

constexpr int kRate = 44100;

// Long-lasting axes, so that the radius meets its cap, some of them with an offset.
Room room_of(int axes) {
  const float refl = dB_to_mag(-0.1f) * 100.0f;
  const Room all = {{10, 0, refl}, {11, 0, refl}, {12, 1, refl}, {13, 1, refl}, {14, 2, refl}};
  return Room(all.begin(), all.begin() + axes);
}

FIROrtho<float>& rendered(int axes) {
  static FIROrtho<float> ortho;
  Room room = room_of(axes);
  ortho.update(room, 60.0f, kRate, 1.0f, 0.0f, 0.0f, -12.0f, -120.0f);
  return ortho;
}

// Processor time, so that other work of the machine does not count.
double ms_now() { return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void volume(benchmark::State& state) {
  FIROrtho<float>& ortho = rendered(static_cast<int>(state.range(0)));
  for (auto _ : state) ortho.update_Gauss_volume();
}

void time_mapping(benchmark::State& state) {
  FIROrtho<float>& ortho = rendered(static_cast<int>(state.range(0)));
  for (auto _ : state) ortho.update_FIR_time_props();
  state.counters["samples"] = ortho.num_samples;
}

void decay(benchmark::State& state) {
  FIROrtho<float>& ortho = rendered(static_cast<int>(state.range(0)));
  std::optional<ScopedFlushToZero> mode;
  if (state.range(1) != 0) mode.emplace();
  for (auto _ : state) ortho.update_FIR_EQ();
}

void finalize(benchmark::State& state) {
  FIROrtho<float>& ortho = rendered(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    ortho.FIR.assign(ortho.FIR_EQ.begin(), ortho.FIR_EQ.begin() + ortho.num_samples);
    state.ResumeTiming();
    ortho.update_FIR_finalize();
  }
}

// Multiply-adds of four cells that the rows of a table need which are summed in tiles: all above 1.
double multiply_adds(const GaussCircle<float>& lattice) {
  double cells = 0;
  for (std::size_t d = 2; d < lattice.dim_sizes.size(); ++d) {
    const auto [a, b] = lattice.images_within(lattice.S, d);
    for (int n = lattice.dim_offsets[d] != 0 ? a : 1; n <= b; ++n) {
      const double x = n * lattice.dim_sizes[d] + lattice.dim_offsets[d];
      const float factor = lattice.weight_powers[d][static_cast<std::size_t>(std::abs(n))];
      if (factor > 0) cells += lattice.S2 + 1 - x * x;
    }
  }
  return cells / 4;
}

// As many multiply-adds, eight sums in registers, all other operands in the first-level cache.
double limit_ms(double count) {
  constexpr int kSums = 8;
  constexpr int kSources = 64;
  constexpr int kUnrolled = 4;  // or the loop's place in memory decides its speed
  alignas(32) static float source[kSources * kSums * 4 + 4];
  alignas(32) static float sums[kSums * 4];
  const auto rounds = static_cast<long>(count / (kSums * kSources));
  float* escaped = source;
  benchmark::DoNotOptimize(escaped);
  escaped = sums;
  benchmark::DoNotOptimize(escaped);
  const double start = ms_now();
  for (long round = 0; round < rounds; ++round) {
    Float4 sum[kSums];
    for (int k = 0; k < kSums; ++k) sum[k] = Float4::load_aligned(sums + 4 * k);
    for (int s = 0; s < kSources; s += kUnrolled) {
      for (int u = 0; u < kUnrolled; ++u) {
        const float* const from = source + (s + u) * kSums * 4 + u % 2;
        const Float4 factor = Float4::set1(from[0]);
        for (int k = 0; k < kSums; ++k) sum[k] = sum[k] + Float4::load(from + 4 * k) * factor;
      }
    }
    for (int k = 0; k < kSums; ++k) sum[k].store_aligned(sums + 4 * k);
    benchmark::ClobberMemory();
  }
  return ms_now() - start;
}

bool same_table(const GaussCircle<float>& lattice, const AlignedVector<AlignedVector<float>>& C) {
  for (std::size_t d = 0; d < C.size(); ++d) {
    const auto bytes = (static_cast<std::size_t>(lattice.S2) + 1) * sizeof(float);
    if (std::memcmp(C[d].data(), lattice.C[d].data(), bytes) != 0) return false;
  }
  return true;
}

// The forms of the table and the limit take turns; the best of each counts, as the machine's other
// work only ever adds.
void lattice_kernel(benchmark::State& state) {
  FIROrtho<float>& ortho = rendered(static_cast<int>(state.range(0)));
  GaussCircle<float>& lattice = ortho.volume;
  lattice.compute_C_vectorized();
  const auto expected = lattice.C;
  const double count = multiply_adds(lattice);
  double plain = std::numeric_limits<double>::infinity();
  double narrow = plain, wide = plain, limit = plain;
  for (auto _ : state) {
    const auto best_of = [&](double& best, auto table) {
      const double start = ms_now();
      table();
      best = std::min(best, ms_now() - start);
      if (!same_table(lattice, expected)) state.SkipWithError("the tables differ");
    };
    best_of(plain, [&] { lattice.compute_C_vectorized(); });
    ippJumpIndexForMergedLibs = 0;
    best_of(narrow, [&] { lattice.compute_C_vectorized_SSE2(); });
    ippInit();
    best_of(wide, [&] { lattice.compute_C_vectorized_SSE2(); });
    limit = std::min(limit, limit_ms(count));
  }
  state.counters["plain_ms"] = plain;
  state.counters["128_bits_ms"] = narrow;
  state.counters["widest_ms"] = wide;
  state.counters["limit_ms"] = limit;
  state.counters["128_bits/limit"] = narrow / limit;
  state.counters["widest/limit"] = wide / limit;
}

}  // namespace

BENCHMARK(lattice_kernel)
    ->ArgName("axes")
    ->Arg(3)
    ->Arg(5)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(volume)->ArgName("axes")->Arg(1)->Arg(3)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK(time_mapping)->ArgName("axes")->Arg(1)->Arg(3)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK(decay)
    ->ArgNames({"axes", "flush_to_zero"})
    ->ArgsProduct({{1, 3, 5}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(finalize)->ArgName("axes")->Arg(1)->Arg(3)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
