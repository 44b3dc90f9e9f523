// The drawing primitives, by the pixels they leave.
#include <numbers>

#include "tests/graphics/Fixture.h"

namespace {

constexpr float kPi = std::numbers::pi_v<float>;

TEST(IRECT, AnEmptyRectangleHoldsAndMeetsNothingAndVanishesInAUnion) {
  const IRECT empty;
  const IRECT r(-5, -5, 10, 10);
  EXPECT_FALSE(empty.Contains(0, 0) || empty.Intersects(r) || r.Intersects(empty));
  EXPECT_EQ(empty.Union(r), r);
  EXPECT_EQ(r.Union(empty), r);
  EXPECT_EQ(r.Union({20, -9, 22, 1}), IRECT(-5, -9, 22, 10));
  EXPECT_TRUE(r.Contains(-5, 9));
  EXPECT_FALSE(r.Contains(10, 0) || r.Contains(0, 10));
  EXPECT_FALSE(r.Intersects({10, 0, 20, 5})) << "touching is not meeting";
  EXPECT_EQ(r.Intersect({9, 0, 20, 50}), IRECT(9, 0, 10, 10));
}

// The canvas is drawn on directly, with the whole of it as the rectangle in hand.
class Primitives : public EditorTest {
 protected:
  Primitives() {
    graphics->AttachPanelBackground(&kColorBlack);
    Show();
    graphics->DrawEverything();
  }
};

TEST_F(Primitives, BitmapsAreClippedToTheRectangleInHandWithTheirOrigin) {
  struct Stamp : IControl {
    Stamp(IPlugBase* p, IRECT r, IBitmap b) : IControl(p, r), mBitmap(b) {}
    bool Draw(IGraphics* g) override { return g->DrawBitmap(&mBitmap, &mRECT, 0, 0); }
    IBitmap mBitmap;
  };
  const IBitmap bitmap = FramesOf(20, 20, {kColorRed});
  LICE_FillRect(static_cast<LICE_IBitmap*>(bitmap.mData), 0, 0, 7, 10, kGreen);
  Attach<Stamp>(IRECT(30, 40, 50, 60), bitmap);
  IRECT part(35, 48, 42, 53);
  graphics->Draw(&part);
  EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(35, 48, 37, 50));
  EXPECT_EQ(graphics->BoundsOf(kRed), part);
}

TEST_F(Primitives, FramesStandBelowOrBesideEachOther) {
  const std::vector<IColor> colours = {kColorRed, kColorGreen, kColorBlue};
  const IRECT dest(30, 40, 38, 46);
  for (int i = 0; i < 8; ++i) {
    const int state = i / 2;
    const IBitmap bitmap = FramesOf(8, 6, colours, i % 2 == 1);
    graphics->DrawEverything();
    graphics->DrawBitmap(&bitmap, &dest, state);
    const auto expected = colours[static_cast<std::size_t>(std::max(state, 1) - 1)].Pixel();
    EXPECT_EQ(graphics->BoundsOf(expected), dest) << "state " << state;
  }
  // A height that frames do not divide: of 3 in 11 rows the second starts at row 4 (3.67 rounded).
  IBitmap odd = FramesOf(4, 1, std::vector<IColor>(11, kColorRed));
  LICE_FillRect(static_cast<LICE_IBitmap*>(odd.mData), 0, 4, 4, 7, kGreen);
  odd.N = 3;
  const IRECT row(0, 0, 4, 1);
  graphics->DrawBitmap(&odd, &row, 2);
  EXPECT_EQ(graphics->PixelAt(0, 0), kGreen);
}

TEST_F(Primitives, EachBlendMethodMixesInItsOwnWay) {
  const IRECT dest(0, 0, 4, 4);
  const IColor half(128, 200, 100, 0);
  const IColor base(255, 100, 100, 100);
  // With alpha: 100 + (200 - 100) * 128 / 255 and so on; dodge divides by 1 - 200/255 * 128/255.
  for (const auto& [method, weight, red, green] :
       {std::tuple(0, 1.0f, 150, 100), std::tuple(1, 1.0f, 200, 100),
        std::tuple(1, 0.25f, 125, 100), std::tuple(2, 1.0f, 200, 150),
        std::tuple(3, 1.0f, 164, 124), std::tuple(77, 0.0f, 150, 100)}) {
    const IChannelBlend blend(method, weight);
    graphics->FillIRect(&base, &dest);
    graphics->FillIRect(&half, &dest, &blend);
    EXPECT_NEAR(graphics->GetPoint(1, 1).R, red, 2) << "method " << method;
    EXPECT_NEAR(graphics->GetPoint(1, 1).G, green, 2) << "method " << method;
  }
}

TEST_F(Primitives, PointsRoundAndForcedPixelsKeepTheirAlpha) {
  graphics->DrawPoint(&kColorRed, 10.5f, 20.4f);
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(11, 20, 12, 21));
  const IColor glass(7, 1, 2, 3);
  EXPECT_TRUE(graphics->ForcePixel(&glass, kWidth - 1, kHeight - 1));
  EXPECT_EQ(graphics->GetPoint(kWidth - 1, kHeight - 1), glass);
  EXPECT_FALSE(graphics->ForcePixel(&glass, kWidth, 0) || graphics->ForcePixel(&glass, 0, -1));
  EXPECT_EQ(graphics->GetBits()[20 * graphics->GetDrawBitmap()->getRowSpan() + 11], kRed);
  EXPECT_EQ(IColor(256 + 7, -1, 300, 512).Pixel(), 0x002CFF07U) << "low eight bits count";
}

TEST_F(Primitives, LinesAndFiguresCoverTheirExtent) {
  const auto painted = [this](const IRECT& rect, int least, int most, const char* figure) {
    const int count = graphics->CountOf(kRed);
    EXPECT_TRUE(least <= count && count <= most) << figure << " of " << count << " pixels";
    EXPECT_EQ(graphics->BoundsOf(kRed), rect) << figure;
    graphics->DrawEverything();
  };
  const IColor glass(10, 0, 255, 0);
  graphics->DrawVerticalLine(&glass, 5, 10, 20);
  EXPECT_EQ(graphics->BoundsOf(glass.Pixel()), IRECT(5, 10, 6, 21)) << "opaque, both ends";
  graphics->DrawHorizontalLine(&kColorRed, 7, 30, 40);
  painted({30, 7, 41, 8}, 11, 11, "horizontal line");
  const IRECT rect(100, 10, 140, 30);
  graphics->DrawVerticalLine(&kColorRed, &rect, 0.25f);
  painted({110, 10, 111, 31}, 21, 21, "line at a quarter");
  graphics->DrawHorizontalLine(&kColorRed, &rect, 9.0f);
  painted({100, 30, 141, 31}, 41, 41, "line at a clamped fraction");
  graphics->DrawRadialLine(&kColorRed, 50.0f, 50.0f, 0.0f, 10.0f, 20.0f);
  painted({50, 30, 51, 41}, 11, 11, "radial line upward");
  graphics->DrawRadialLine(&kColorRed, 50.25f, 50.25f, 0.5f * kPi, 0.0f, 20.0f);
  painted({50, 50, 71, 51}, 21, 21, "radial line a quarter clockwise");
  graphics->DrawLine(&kColorRed, 10.0f, 10.0f, 40.0f, 25.0f);
  painted({10, 10, 41, 26}, 31, 31, "line");
  graphics->DrawRect(&kColorRed, &rect);
  painted(rect, 2 * 40 + 2 * 18, 2 * 40 + 2 * 18, "rectangle");
  graphics->RoundRect(&kColorRed, &rect, nullptr, 3, false);
  painted(rect, 100, 116, "rounded outline");
  graphics->FillRoundRect(&kColorRed, &rect, nullptr, 3, false);
  painted(rect, 780, 799, "rounded rectangle");
  graphics->DrawCircle(&kColorRed, 50.0f, 50.0f, 10.0f);
  painted({40, 40, 61, 61}, 50, 70, "circle");
  graphics->FillCircle(&kColorRed, 50.0f, 50.0f, 10.0f);
  painted({40, 40, 61, 61}, 305, 350, "disc");
  graphics->DrawArc(&kColorRed, 50.0f, 50.0f, 10.0f, 0.0f, 0.5f * kPi);
  painted({50, 40, 61, 51}, 12, 20, "arc");
  graphics->FillTriangle(&kColorRed, 10, 10, 30, 10, 10, 30);
  painted({10, 10, 31, 31}, 200, 235, "triangle");
  const int x[] = {10, 20, 30, 20};
  const int y[] = {20, 10, 20, 30};
  graphics->FillIConvexPolygon(&kColorRed, x, y, 4);
  painted({10, 10, 31, 31}, 200, 225, "rhomb");
}

TEST_F(Primitives, RotatedBitmapsTurnClockwiseAboutTheirPivot) {
  const IBitmap bitmap = FramesOf(20, 10, {kColorRed, kColorGreen});  // red above green
  struct Case {
    double turns;
    int offset, redX, redY, greenX, greenY;
  };
  // With the pivot at the bottom edge, half a turn hangs the picture below it.
  for (const Case& c : {Case{0.0, 0, 40, 40, 59, 59}, Case{0.25, 0, 59, 40, 40, 59},
                        Case{0.5, 10, 50, 75, 50, 65}}) {
    graphics->DrawEverything();
    graphics->DrawRotatedBitmap(&bitmap, 50, 50, c.turns * 2.0 * std::numbers::pi, c.offset);
    EXPECT_EQ(graphics->PixelAt(c.redX, c.redY), kRed) << c.turns;
    EXPECT_EQ(graphics->PixelAt(c.greenX, c.greenY), kGreen) << c.turns;
  }
}

TEST_F(Primitives, ScaledAndCroppedBitmapsOutliveTheirOrigin) {
  IBitmap bitmap = FramesOf(10, 10, {kColorRed, kColorGreen});
  const IBitmap scaled = graphics->ScaleBitmap(&bitmap, 30, 40);
  const IRECT lower(2, 8, 8, 20);
  const IBitmap cropped = graphics->CropBitmap(&bitmap, &lower);
  EXPECT_EQ(cropped.H, 12);
  IGraphics::ReleaseBitmap(&bitmap);
  EXPECT_EQ(bitmap.mData, nullptr);
  const IRECT dest(0, 0, scaled.W, scaled.H);
  graphics->DrawBitmap(&scaled, &dest, 0, 0);
  EXPECT_EQ(graphics->PixelAt(29, 5), kRed);
  EXPECT_EQ(graphics->PixelAt(29, 39), kGreen);
  const IRECT corner(100, 0, 106, 12);
  graphics->DrawBitmap(&cropped, &corner, 0, 0);
  EXPECT_EQ(graphics->PixelAt(105, 1), kRed);
  EXPECT_EQ(graphics->PixelAt(105, 2), kGreen);
}

}  // namespace
