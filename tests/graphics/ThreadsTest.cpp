// The editor's thread draws and drags while the host and a worker change what it shows.
#include <atomic>
#include <thread>

#include "graphics/controls/ICircleKnobMultiControlText.h"
#include "tests/graphics/Fixture.h"

namespace {

using Threads = EditorTest;

TEST_F(Threads, ParametersMayChangeWhileTheEditorDrawsAndNoChangeIsLost) {
  graphics->AttachPanelBackground(&kColorBlack);
  auto* knob =
      Attach<ICircleKnobMultiControlText>(kLevel, 50, 50, 40, IText(12, kColorWhite), kColorRed);
  auto* dragged =
      Attach<ICircleKnobMultiControlText>(kCount, 150, 50, 40, IText(12, kColorWhite), kColorRed);
  knob->AddAuxParam(kNegated);
  Show();
  constexpr int kChanges = 3000;
  std::atomic<int> running = 2;
  const auto automate = [&](int param) {
    for (int i = 1; i <= kChanges; ++i) {
      const double value = static_cast<double>(i) / kChanges;
      const PlugLock::Guard guard(plug.GetLock());
      plug.GetParam(param)->SetNormalized(value);
      graphics->SetParameterFromPlug(param, value, true);
    }
    --running;
  };
  std::thread host(automate, kLevel);
  std::thread other(automate, kNegated);
  graphics->OnMouseDown(150, 50, &left);
  for (int i = 0; running > 0; ++i) {
    graphics->OnMouseDrag(150, i % 90, &left);
    graphics->Tick();
  }
  graphics->OnMouseUp(150, 50, &left);
  host.join();
  other.join();
  Settle();
  IRECT rect;
  EXPECT_FALSE(graphics->IsDirty(&rect));
  EXPECT_EQ(knob->GetValue(), 1.0);
  EXPECT_EQ(knob->GetAuxParam(0)->mValue, 1.0);
  EXPECT_GE(dragged->GetValue(), 0.0);
  // The inner dot of the dial stands at the end of its track: what is drawn is the last value.
  EXPECT_EQ(graphics->PixelAt(50 + 22, 50 + 22), IColor(255, 0, 255, 255).Pixel());
}

}  // namespace
