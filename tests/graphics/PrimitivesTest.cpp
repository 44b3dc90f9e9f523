// The drawing primitives, by the pixels they leave.
#include <numbers>

#include "graphics/IGraphicsTypes.h"
#include "tests/graphics/Fixture.h"

namespace {

constexpr float kPi = std::numbers::pi_v<float>;
constexpr uint32_t kRed = kColorRed.Pixel();
constexpr uint32_t kGreen = kColorGreen.Pixel();
constexpr uint32_t kBlue = kColorBlue.Pixel();

TEST(IRECT, AnEmptyRectangleHoldsAndMeetsNothingAndVanishesInAUnion) {
  const IRECT empty;
  const IRECT r(-5, -5, 10, 10);
  EXPECT_FALSE(empty.Contains(0, 0));
  EXPECT_FALSE(empty.Intersects(r) || r.Intersects(empty));
  EXPECT_EQ(empty.Union(r), r);
  EXPECT_EQ(r.Union(empty), r);
  EXPECT_EQ(r.Union({20, -9, 22, 1}), IRECT(-5, -9, 22, 10));
  EXPECT_TRUE(r.Contains(-5, 9));
  EXPECT_FALSE(r.Contains(10, 0) || r.Contains(0, 10));
  EXPECT_FALSE(r.Intersects({10, 0, 20, 5})) << "touching is not meeting";
  EXPECT_EQ(r.Intersect({9, 0, 20, 50}), IRECT(9, 0, 10, 10));
  EXPECT_TRUE(r.Intersect({10, 0, 20, 5}).Empty());
}

TEST(IColor, ChannelsKeepTheirLowEightBits) {
  EXPECT_EQ(IColor(255, 187, 1, 2).Pixel(), 0x0201BBFFU);
  EXPECT_EQ(IColor(256 + 7, -1, 300, 512).Pixel(), 0x002CFF07U);
}

// The canvas is drawn on directly, with the whole of it as the rectangle in hand.
class Primitives : public EditorTest {
 protected:
  Primitives() {
    graphics->AttachPanelBackground(&kColorBlack);
    Show();
    Wipe();
  }
  void Wipe() {
    IRECT all(0, 0, kWidth, kHeight);
    graphics->Draw(&all);
  }
};

TEST_F(Primitives, BitmapsAreClippedToTheRectangleInHandWithTheirOrigin) {
  const IBitmap bitmap = FramesOf(20, 10, {kColorRed, kColorGreen});
  struct Stamp : IControl {
    Stamp(IPlugBase* p, IRECT r, IBitmap b) : IControl(p, r), mBitmap(b) {}
    bool Draw(IGraphics* g) override {
      const IRECT dest(0, 0, 20, 20);
      return g->DrawBitmap(&mBitmap, &dest, 0, 0);
    }
    IBitmap mBitmap;
  };
  Attach<Stamp>(IRECT(0, 0, 20, 20), bitmap);
  IRECT part(5, 8, 12, 13);
  graphics->Draw(&part);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(5, 8, 12, 10));
  EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(5, 10, 12, 13));
}

TEST_F(Primitives, FramesStandBelowOrBesideEachOther) {
  const std::vector<IColor> colours = {kColorRed, kColorGreen, kColorBlue};
  const IRECT dest(30, 40, 38, 46);
  for (const bool horizontal : {false, true}) {
    const IBitmap bitmap = FramesOf(8, 6, colours, horizontal);
    for (int state = 0; state <= 3; ++state) {
      Wipe();
      graphics->DrawBitmap(&bitmap, &dest, state);
      const auto expected = colours[static_cast<size_t>(std::max(state, 1) - 1)].Pixel();
      EXPECT_EQ(graphics->BoundsOf(expected), dest) << "state " << state;
    }
  }
  // A height that frames do not divide: frame 2 of 3 in 10 rows starts at row 3, frame 3 at row 7.
  IBitmap odd = FramesOf(4, 5, {kColorRed, kColorGreen});
  odd.N = 3;
  const IRECT row(0, 0, 4, 1);
  for (const auto& [state, expected] : {std::pair(2, kRed), std::pair(3, kGreen)}) {
    graphics->DrawBitmap(&odd, &row, state);
    EXPECT_EQ(graphics->PixelAt(0, 0), expected);
  }
}

TEST_F(Primitives, EachBlendMethodMixesInItsOwnWay) {
  const IRECT dest(0, 0, 4, 4);
  const IColor half(128, 200, 100, 0);
  const IColor base(255, 100, 100, 100);
  struct Case {
    IChannelBlend blend;
    int red, green;
  };
  // With alpha: 100 + (200 - 100) * 128 / 255 and so on; dodge divides by 1 - 200/255 * 128/255.
  for (const Case& c :
       {Case{{IChannelBlend::kBlendNone, 1.0F}, 150, 100},
        Case{{IChannelBlend::kBlendClobber, 1.0F}, 200, 100},
        Case{{IChannelBlend::kBlendClobber, 0.25F}, 125, 100},
        Case{{IChannelBlend::kBlendAdd, 1.0F}, 200, 150},
        Case{{IChannelBlend::kBlendColorDodge, 1.0F}, 164, 124}, Case{{77, 0.0F}, 150, 100}}) {
    graphics->FillIRect(&base, &dest);
    graphics->FillIRect(&half, &dest, &c.blend);
    EXPECT_NEAR(graphics->GetPoint(1, 1).R, c.red, 2) << "method " << c.blend.mMethod;
    EXPECT_NEAR(graphics->GetPoint(1, 1).G, c.green, 2) << "method " << c.blend.mMethod;
  }
  graphics->FillIRect(&base, &dest);
  graphics->FillIRect(&half, &dest, nullptr);
  EXPECT_NEAR(graphics->GetPoint(1, 1).R, 150, 2);
}

TEST_F(Primitives, PointsRoundAndForcedPixelsKeepTheirAlpha) {
  graphics->DrawPoint(&kColorRed, 10.5F, 20.4F);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(11, 20, 12, 21));
  const IColor glass(7, 1, 2, 3);
  EXPECT_TRUE(graphics->ForcePixel(&glass, kWidth - 1, kHeight - 1));
  EXPECT_EQ(graphics->GetPoint(kWidth - 1, kHeight - 1), glass);
  EXPECT_FALSE(graphics->ForcePixel(&glass, kWidth, 0));
  EXPECT_FALSE(graphics->ForcePixel(&glass, 0, -1));
  EXPECT_EQ(graphics->GetBits()[20 * graphics->GetDrawBitmap()->getRowSpan() + 11], kRed);
}

TEST_F(Primitives, StraightLinesAreOpaqueAndReachBothEnds) {
  const IColor glass(10, 0, 255, 0);
  graphics->DrawVerticalLine(&glass, 5, 10, 20);
  EXPECT_EQ(graphics->BoundsOf(glass.Pixel()), IRECT(5, 10, 6, 21));
  graphics->DrawHorizontalLine(&kColorRed, 7, 30, 40);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(30, 7, 41, 8));
  const IRECT rect(50, 50, 60, 70);
  graphics->DrawRect(&kColorBlue, &rect);
  EXPECT_EQ(graphics->BoundsOf(kBlue), rect);
  EXPECT_EQ(graphics->CountOf(kBlue), 2 * 10 + 2 * 18) << "the inside stays free";
}

TEST_F(Primitives, FractionsOfARectangleAreClamped) {
  const IRECT rect(100, 10, 140, 50);
  for (const auto& [fraction, at] :
       {std::pair(0.25F, 10), std::pair(-3.0F, 0), std::pair(9.0F, 40)}) {
    Wipe();
    graphics->DrawVerticalLine(&kColorRed, &rect, fraction);
    EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(100 + at, 10, 101 + at, 51));
    graphics->DrawHorizontalLine(&kColorBlue, &rect, fraction);
    EXPECT_EQ(graphics->BoundsOf(kBlue), IRECT(100, 10 + at, 141, 11 + at));
  }
}

TEST_F(Primitives, RadialLinesPointUpAtZeroAndTurnClockwise) {
  graphics->DrawRadialLine(&kColorRed, 50.0F, 50.0F, 0.0F, 10.0F, 20.0F);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(50, 30, 51, 41));
  Wipe();
  graphics->DrawRadialLine(&kColorRed, 50.25F, 50.25F, 0.5F * kPi, 0.0F, 20.0F);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(50, 50, 71, 51));
}

TEST_F(Primitives, FiguresCoverTheirExtent) {
  const auto painted = [this](const IRECT& rect, int least, int most, const char* figure) {
    EXPECT_EQ(graphics->BoundsOf(kRed), rect) << figure;
    EXPECT_GE(graphics->CountOf(kRed), least) << figure;
    EXPECT_LE(graphics->CountOf(kRed), most) << figure;
    Wipe();
  };
  graphics->DrawCircle(&kColorRed, 50.0F, 50.0F, 10.0F);
  painted({40, 40, 61, 61}, 50, 70, "circle");
  graphics->FillCircle(&kColorRed, 50.0F, 50.0F, 10.0F);
  painted({40, 40, 61, 61}, 305, 350, "disc");
  graphics->DrawArc(&kColorRed, 50.0F, 50.0F, 10.0F, 0.0F, 0.5F * kPi);
  painted({50, 40, 61, 51}, 12, 20, "arc");
  const IRECT rect(20, 20, 40, 30);
  graphics->RoundRect(&kColorRed, &rect, nullptr, 3, false);
  painted(rect, 40, 56, "rounded outline");
  graphics->FillRoundRect(&kColorRed, &rect, nullptr, 3, false);
  painted(rect, 180, 199, "rounded rectangle");
  graphics->FillTriangle(&kColorRed, 10, 10, 30, 10, 10, 30);
  painted({10, 10, 31, 31}, 200, 235, "triangle");
  const int x[] = {10, 20, 30, 20};
  const int y[] = {20, 10, 20, 30};
  graphics->FillIConvexPolygon(&kColorRed, x, y, 4);
  painted({10, 10, 31, 31}, 200, 225, "rhomb");
  graphics->DrawLine(&kColorRed, 10.0F, 10.0F, 40.0F, 25.0F);
  painted({10, 10, 41, 26}, 31, 31, "line");
}

TEST_F(Primitives, ARotatedBitmapTurnsAboutItsMiddle) {
  const IBitmap bitmap = FramesOf(20, 10, {kColorRed, kColorGreen});  // red above green
  graphics->DrawRotatedBitmap(&bitmap, 50, 50, 0.0);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(40, 40, 60, 50));
  EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(40, 50, 60, 60));
  Wipe();
  graphics->DrawRotatedBitmap(&bitmap, 50, 50, 0.5 * std::numbers::pi);
  EXPECT_EQ(graphics->PixelAt(56, 50), kRed) << "a quarter turn brings the top to the right";
  EXPECT_EQ(graphics->PixelAt(43, 50), kGreen);
  Wipe();
  // With the pivot 10 lower, at the bottom edge, half a turn hangs the picture below it.
  graphics->DrawRotatedBitmap(&bitmap, 50, 50, std::numbers::pi, 10);
  EXPECT_EQ(graphics->PixelAt(50, 65), kGreen);
  EXPECT_EQ(graphics->PixelAt(50, 75), kRed);
  EXPECT_NE(graphics->PixelAt(50, 50), kRed);
}

TEST_F(Primitives, ARotatedMaskAddsItsLightToTheBaseUnderTheTop) {
  const IBitmap base = FramesOf(20, 20, {kColorRed});
  const IBitmap mask = FramesOf(20, 10, {IColor(0, 0, 0, 0), kColorGreen});  // light below
  IBitmap top = FramesOf(20, 20, {IColor(0, 0, 0, 0)});
  LICE_FillRect(static_cast<LICE_IBitmap*>(top.mData), 8, 8, 4, 4, kBlue);
  graphics->DrawRotatedMask(&base, &mask, &top, 30, 40, std::numbers::pi);
  const uint32_t lit = IColor(255, 255, 255, 0).Pixel();
  EXPECT_EQ(graphics->PixelAt(40, 43), lit) << "half a turn brings the light up";
  EXPECT_EQ(graphics->PixelAt(40, 57), kRed);
  EXPECT_EQ(graphics->BoundsOf(kBlue), IRECT(38, 48, 42, 52));
  EXPECT_EQ(graphics->PixelAt(29, 43), kColorBlack.Pixel());
}

TEST_F(Primitives, ScaledAndCroppedBitmapsAreBitmapsOfTheirOwn) {
  IBitmap bitmap = FramesOf(10, 10, {kColorRed, kColorGreen});
  IBitmap scaled = graphics->ScaleBitmap(&bitmap, 30, 40);
  EXPECT_EQ(scaled.W, 30);
  EXPECT_EQ(scaled.H, 40);
  EXPECT_EQ(scaled.N, 2);
  const IRECT lower(2, 8, 8, 20);
  IBitmap cropped = graphics->CropBitmap(&bitmap, &lower);
  IGraphics::ReleaseBitmap(&bitmap);
  EXPECT_EQ(bitmap.mData, nullptr);
  const IRECT dest(0, 0, 30, 40);
  graphics->DrawBitmap(&scaled, &dest, 0, 0);
  EXPECT_EQ(graphics->PixelAt(15, 5), kRed);
  EXPECT_EQ(graphics->PixelAt(15, 35), kGreen);
  const IRECT corner(100, 0, 106, 12);
  graphics->DrawBitmap(&cropped, &corner, 0, 0);
  EXPECT_EQ(graphics->PixelAt(100, 1), kRed);
  EXPECT_EQ(graphics->PixelAt(100, 2), kGreen);
  IGraphics::ReleaseBitmap(&scaled);
  IGraphics::ReleaseBitmap(&cropped);
}

TEST_F(Primitives, ABitmapWithoutPixelsDrawsNothing) {
  const IBitmap missing;
  const IRECT dest(0, 0, 20, 20);
  EXPECT_TRUE(graphics->DrawBitmap(&missing, &dest, 1));
  EXPECT_TRUE(graphics->DrawRotatedBitmap(&missing, 10, 10, 1.0));
  EXPECT_TRUE(graphics->DrawRotatedMask(&missing, &missing, &missing, 10, 10, 1.0));
  EXPECT_EQ(graphics->CountOf(kColorBlack.Pixel()), kWidth * kHeight);
}

}  // namespace
