// Times of the rasteriser's loops that a redraw of the editor waits for.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "graphics/lice/LICE.h"

namespace {

constexpr int kWidth = 960, kHeight = 600;  // of the editor
constexpr int kSegments = 881767;           // the longest response at 44,100 Hz

constexpr LICE_pixel kWaveColor = LICE_RGBA(255, 0, 0, 178);
constexpr int kWaveMode = LICE_BLIT_MODE_ADD | LICE_BLIT_USE_ALPHA;

struct Wave {
  std::vector<float> x, y;
};

// A decaying noise as the waveform display lays it out: 60 dB over the response, logarithmic time.
Wave MakeWave(double decay_dB) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> level(0.0, 1.0);
  Wave wave;
  for (int i = 0; i < kSegments; ++i) {
    const double t = static_cast<double>(i) / kSegments;
    const double height = 100.0 * level(random) * std::pow(10.0, -decay_dB * t / 20.0);
    wave.x.push_back(static_cast<float>(424.0 * std::log(t * 1.718281828459045 + 1.0) + 72.0));
    wave.y.push_back(static_cast<float>(144.0 - height));
  }
  return wave;
}

void AdditiveLines(benchmark::State& state) {
  LICE_SysBitmap canvas(kWidth, kHeight);
  const Wave wave = MakeWave(static_cast<double>(state.range(0)));
  for (auto _ : state) {
    for (std::size_t i = 1; i < wave.x.size(); ++i) {
      LICE_Line(&canvas, wave.x[i - 1], wave.y[i - 1], wave.x[i], wave.y[i], kWaveColor, 1.0f,
                kWaveMode, false);
    }
    benchmark::DoNotOptimize(*canvas.getBits());
  }
  state.SetItemsProcessed(state.iterations() * kSegments);
}
BENCHMARK(AdditiveLines)
    ->ArgName("decay_dB")
    ->Arg(60)
    ->Arg(20)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond);

void FullCanvasBlit(benchmark::State& state) {
  LICE_SysBitmap canvas(kWidth, kHeight);
  LICE_MemBitmap picture(kWidth, kHeight);
  LICE_FillRect(&picture, 0, 0, kWidth, kHeight, LICE_RGBA(40, 80, 120, 200));
  const float weight = static_cast<float>(state.range(1)) / 100.0f;
  for (auto _ : state) {
    LICE_Blit(&canvas, &picture, 0, 0, 0, 0, kWidth, kHeight, weight,
              static_cast<int>(state.range(0)));
    benchmark::DoNotOptimize(*canvas.getBits());
  }
}
BENCHMARK(FullCanvasBlit)
    ->ArgNames({"mode", "percent"})
    ->Args({LICE_BLIT_MODE_COPY, 100})
    ->Args({LICE_BLIT_MODE_COPY, 50})
    ->Args({LICE_BLIT_MODE_COPY, 70})
    ->Args({LICE_BLIT_MODE_COPY | LICE_BLIT_USE_ALPHA, 100})
    ->Args({LICE_BLIT_MODE_ADD | LICE_BLIT_USE_ALPHA, 100})
    ->Args({LICE_BLIT_MODE_DODGE | LICE_BLIT_USE_ALPHA, 100})
    ->Unit(benchmark::kMicrosecond);

void FillCanvas(benchmark::State& state) {
  LICE_SysBitmap canvas(kWidth, kHeight);
  for (auto _ : state) {
    LICE_FillRect(&canvas, 0, 0, kWidth, kHeight, LICE_RGBA(10, 20, 30, 255),
                  static_cast<float>(state.range(0)) / 100.0f, LICE_BLIT_USE_ALPHA);
    benchmark::DoNotOptimize(*canvas.getBits());
  }
}
BENCHMARK(FillCanvas)->ArgName("percent")->Arg(100)->Arg(40)->Unit(benchmark::kMicrosecond);

void KnobDot(benchmark::State& state) {
  LICE_SysBitmap canvas(kWidth, kHeight);
  for (auto _ : state) {
    LICE_FillCircle(&canvas, 722, 149, 3.72f, LICE_RGBA(255, 187, 0, 255), 1.0f,
                    LICE_BLIT_USE_ALPHA);
    benchmark::DoNotOptimize(*canvas.getBits());
  }
}
BENCHMARK(KnobDot);

void Text(benchmark::State& state) {
  LICE_SysBitmap canvas(kWidth, kHeight);
  LICE_FontRequest request;
  request.face = "Monaco";
  request.height = 12;
  LICE_CachedFont font;
  font.SetFromHFont(LICE_PlatformFont::Create(request).release(), LICE_FONT_FLAG_OWNS_HFONT);
  LICE_Rect rect{691, 142, 753, 160};
  for (auto _ : state) {
    font.DrawText(&canvas, "-12.50 dB", -1, &rect, LICE_TEXT_CENTRE);
    benchmark::DoNotOptimize(*canvas.getBits());
  }
}
BENCHMARK(Text);

}  // namespace

BENCHMARK_MAIN();
