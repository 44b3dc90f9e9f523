// Which controls a frame draws, and which pixels it may change.
#include "tests/graphics/Fixture.h"
#include "tests/support/AllocationGuard.h"

namespace {

constexpr uint32_t kRed = kColorRed.Pixel();
constexpr uint32_t kGreen = kColorGreen.Pixel();
constexpr uint32_t kBlue = kColorBlue.Pixel();

using Frame = EditorTest;

TEST_F(Frame, WithoutControlsNothingIsDirtyAndNothingIsDrawn) {
  Show();
  IRECT rect(0, 0, 10, 10);
  EXPECT_FALSE(graphics->IsDirty(&rect));
  EXPECT_TRUE(rect.Empty());
  rect = IRECT(0, 0, kWidth, kHeight);
  graphics->Draw(&rect);
  EXPECT_EQ(graphics->screens, 0);
}

TEST_F(Frame, TheDirtyRectangleIsTheUnionOfDirtyControlsAndAsksForNoMemory) {
  Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight));
  auto* a = Attach<ProbeControl>(IRECT(10, 20, 30, 40));
  auto* b = Attach<ProbeControl>(IRECT(50, 10, 60, 25));
  Show();
  const AllocationGuard guard;
  IRECT rect;
  EXPECT_FALSE(graphics->IsDirty(&rect));
  a->SetDirty(false);
  EXPECT_TRUE(graphics->IsDirty(&rect));
  EXPECT_EQ(rect, IRECT(10, 20, 30, 40));
  b->SetDirty(false);
  EXPECT_TRUE(graphics->IsDirty(&rect));
  EXPECT_EQ(rect, IRECT(10, 10, 60, 40));
  EXPECT_EQ(guard.allocations(), 0);
}

TEST_F(Frame, StrictDrawingPaintsInOrderWhatMeetsTheRectangleAndCleansAll) {
  auto* below = Attach<ProbeControl>(IRECT(10, 10, 40, 40), -1, kColorRed);
  auto* above = Attach<ProbeControl>(IRECT(30, 10, 60, 40), -1, kColorGreen);
  auto* hidden = Attach<ProbeControl>(IRECT(10, 10, 60, 40), -1, kColorBlue);
  auto* beside = Attach<ProbeControl>(IRECT(60, 10, 90, 40), -1, kColorBlue);
  hidden->Hide(true);
  Show();
  for (auto* control : {below, above, hidden, beside}) control->TakeEvents();
  EXPECT_EQ(graphics->PixelAt(35, 20), kGreen);
  EXPECT_EQ(graphics->PixelAt(29, 20), kRed);

  graphics->SetAllControlsDirty();
  IRECT rect(20, 10, 60, 20);
  graphics->Draw(&rect);
  EXPECT_EQ(below->TakeEvents().size(), 1U);
  EXPECT_EQ(above->TakeEvents().size(), 1U);
  EXPECT_EQ(hidden->TakeEvents().size(), 0U);
  EXPECT_EQ(beside->TakeEvents().size(), 0U) << "it only touches the rectangle";
  IRECT dirty;
  EXPECT_FALSE(graphics->IsDirty(&dirty));
}

TEST_F(Frame, RepeatedPartialFramesEqualOneWholeFrame) {
  // Translucent paint that reaches over the rectangle in hand must not pile up.
  struct Glow : ProbeControl {
    using ProbeControl::ProbeControl;
    bool Draw(IGraphics* g) override {
      const IChannelBlend add(IChannelBlend::kBlendAdd, 0.25F);
      const IRECT wide(mRECT.L - 5, mRECT.T, mRECT.R + 5, mRECT.B);
      return g->FillIRect(&kColorWhite, &wide, &add);
    }
  };
  const IColor gray(255, 40, 40, 40);
  graphics->AttachPanelBackground(&gray);
  Attach<Glow>(IRECT(20, 20, 120, 80));
  Show();
  const uint32_t inside = graphics->PixelAt(110, 70);
  EXPECT_NE(inside, gray.Pixel());
  for (const bool strict : {true, false}) {
    graphics->SetStrictDrawing(strict);
    Settle();
    for (int i = 0; i < 3; ++i) {
      IRECT part(10, 10, 60, 50);
      graphics->Draw(&part);
    }
    EXPECT_EQ(graphics->PixelAt(110, 70), inside);
    EXPECT_EQ(graphics->PixelAt(40, 40), inside);
    EXPECT_EQ(graphics->PixelAt(180, 90), gray.Pixel());
  }
}

TEST_F(Frame, LooseDrawingRedrawsADirtyControlWithItsNeighbours) {
  auto* background = Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight), -1, kColorGray);
  auto* a = Attach<ProbeControl>(IRECT(10, 10, 30, 30), -1, kColorRed);
  auto* b = Attach<ProbeControl>(IRECT(20, 10, 40, 30), -1, kColorGreen);
  auto* far = Attach<ProbeControl>(IRECT(100, 10, 120, 30), -1, kColorBlue);
  graphics->SetStrictDrawing(false);
  Show();
  const auto clear = [&] {
    for (auto* control : {background, a, b, far}) control->TakeEvents();
  };
  clear();
  a->SetDirty(false);
  EXPECT_TRUE(graphics->Tick());
  EXPECT_EQ(background->TakeEvents().size(), 1U);
  EXPECT_EQ(a->TakeEvents().size(), 1U);
  EXPECT_EQ(b->TakeEvents().size(), 1U);
  EXPECT_EQ(far->TakeEvents().size(), 0U);
  EXPECT_EQ(graphics->PixelAt(25, 20), kGreen);
  EXPECT_EQ(graphics->PixelAt(15, 20), kRed);
  EXPECT_EQ(graphics->PixelAt(110, 20), kBlue);

  clear();
  a->SetDirty(false);
  far->SetDirty(false);
  graphics->Tick();
  EXPECT_EQ(far->TakeEvents().size(), 1U) << "each dirty control has its turn";
  far->Hide(true);
  Settle();
  clear();
  background->SetDirty(false);
  EXPECT_TRUE(graphics->Tick());
  for (auto* control : {background, a, b}) EXPECT_EQ(control->TakeEvents().size(), 1U);
  EXPECT_EQ(far->TakeEvents().size(), 0U);
  EXPECT_FALSE(graphics->Tick());
}

TEST_F(Frame, ResizingDropsTheControlsMakesACanvasAndTellsThePlugin) {
  Attach<ProbeControl>(IRECT(0, 0, 50, 50), kLevel);
  Show();
  graphics->OnMouseDown(5, 5, &left);
  plug.TakeCalls();
  graphics->Resize(kWidth, kHeight);
  EXPECT_EQ(graphics->NControls(), 1) << "an unchanged size does nothing";
  graphics->Resize(50, 40);
  EXPECT_EQ(plug.TakeCalls(), Calls{"resized"});
  EXPECT_EQ(graphics->NControls(), 0);
  EXPECT_EQ(graphics->GetMouseCapture(), -1);
  EXPECT_EQ(graphics->GetDrawBitmap()->getWidth(), 50);
  Attach<ProbeControl>(IRECT(0, 0, 50, 40), -1, kColorGreen);
  EXPECT_TRUE(graphics->Tick());
  EXPECT_EQ(graphics->PixelAt(49, 39), kGreen);
}

TEST_F(Frame, ControlsDieInReverseOrder) {
  struct Mortal : ProbeControl {
    Mortal(IPlugBase* p, std::vector<int>* deaths, int name)
        : ProbeControl(p, IRECT(0, 0, 1, 1)), mDeaths(deaths), mName(name) {}
    ~Mortal() override { mDeaths->push_back(mName); }
    std::vector<int>* mDeaths;
    int mName;
  };
  std::vector<int> deaths;
  {
    TestGraphics editor(&plug, 10, 10);
    for (int i = 1; i < 4; ++i) editor.AttachControl(new Mortal(&plug, &deaths, i));
    editor.SetKeyCatcher(new Mortal(&plug, &deaths, 9));
  }
  EXPECT_EQ(deaths, (std::vector<int>{9, 3, 2, 1}));
}

}  // namespace
