// What the editor's thread spends on a frame: a whole picture with the longest response, one knob,
// and a tick with nothing to draw.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <random>

#include "display/ITolmaraWaveformSpectrogram.h"
#include "graphics/IGraphicsOffscreen.h"
#include "plugin/Tolmara.h"

namespace {

constexpr int kSampleRate = 44100;
constexpr int kLongestResponse = 881767;  // samples

VstIntPtr SilentHost(AEffect*, std::int32_t, std::int32_t, VstIntPtr, void*, float) { return 0; }

// Noise that falls by 60 dB.
AlignedVector<float> Response() {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> level(-1.0f, 1.0f);
  AlignedVector<float> fir(kLongestResponse);
  for (std::size_t i = 0; i < fir.size(); ++i) {
    fir[i] = level(random) * std::exp(-6.9f * static_cast<float>(i) / kLongestResponse);
  }
  return fir;
}

// The product's own editor; its pictures come from the source tree.
class Editor {
 public:
  Editor() {
    const auto root = std::filesystem::path(__FILE__).parent_path().parent_path();
    IGraphicsOffscreen::SetResourceFolder((root / "resources/img").string());
    mPlugin = std::make_unique<Tolmara>(&SilentHost);
    IControl* last = Graphics().GetControl(Graphics().NControls() - 1);
    static_cast<ITolmaraWaveformSpectrogram*>(last)->SetResponse(kSampleRate, Response());
    Frame();
  }
  IGraphics& Graphics() { return *mPlugin->GetGraphics(); }
  IControl* ControlOf(int paramIdx) {
    for (int i = 0;; ++i) {
      if (Graphics().GetControl(i)->ParamIdx() == paramIdx) return Graphics().GetControl(i);
    }
  }
  void Frame() {
    IRECT dirty;
    if (Graphics().IsDirty(&dirty)) Graphics().Draw(&dirty);
  }

 private:
  std::unique_ptr<Tolmara> mPlugin;
};

Editor& TheEditor() {
  static Editor editor;
  return editor;
}

void FullRedraw(benchmark::State& state) {
  Editor& editor = TheEditor();
  for (auto _ : state) {
    editor.Graphics().SetAllControlsDirty();
    editor.Frame();
  }
}
BENCHMARK(FullRedraw)->Unit(benchmark::kMillisecond);

void KnobRedraw(benchmark::State& state) {
  Editor& editor = TheEditor();
  IControl* knob = editor.ControlOf(kMix);
  for (auto _ : state) {
    knob->SetDirty(false);
    editor.Frame();
  }
}
BENCHMARK(KnobRedraw)->Unit(benchmark::kMicrosecond);

void IdleTick(benchmark::State& state) {
  Editor& editor = TheEditor();
  editor.Frame();
  for (auto _ : state) editor.Frame();
}
BENCHMARK(IdleTick)->Unit(benchmark::kNanosecond);

}  // namespace

BENCHMARK_MAIN();
