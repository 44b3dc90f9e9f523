// The editor's window: opening, closing, and what can go wrong around it.
#include <thread>

#include "graphics/lice/LICE_Bitmap.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int kManyTimes = 60;
#else
constexpr int kManyTimes = 1000;
#endif

class EditorWindowTest : public EditorHostTest {
 protected:
  using EditorHostTest::EditorHostTest;

  static constexpr IRECT kAll{0, 0, HostedPlug::kWidth, HostedPlug::kHeight};

  // The canvas as the screen should show it. With the window closed.
  std::vector<uint32_t> Canvas() const {
    const LICE_IBitmap* canvas = mPlug->Graphics()->GetCanvas();
    std::vector<uint32_t> pixels;
    for (int y = 0; y < canvas->getHeight(); ++y) {
      for (int x = 0; x < canvas->getWidth(); ++x) {
        const LICE_pixel p = canvas->getBits()[y * canvas->getRowSpan() + x];
        pixels.push_back(
            static_cast<uint32_t>(LICE_GETR(p) << 16 | LICE_GETG(p) << 8 | LICE_GETB(p)));
      }
    }
    return pixels;
  }
  // True once what the window shows does not change for some frames.
  std::vector<uint32_t> SettledPicture() const {
    std::vector<uint32_t> before, now = mUser.Picture(Window(), kAll);
    for (int i = 0; i < 50 && (before != now || i < 2); ++i) {
      before = std::move(now);
      std::this_thread::sleep_for(std::chrono::milliseconds(150));
      now = mUser.Picture(Window(), kAll);
    }
    return now;
  }
};

TEST_F(EditorWindowTest, ShowsTheCanvasPixelByPixel) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(mUser.ChildrenOf(mParent), std::vector{Window()});
  AEffect* effect = mPlug->GetAEffect();
  effect->setParameter(effect, kLevel, 0.9F);
  const auto picture = SettledPicture();
  Close();
  EXPECT_EQ(picture, Canvas());
  EXPECT_EQ(picture[0], 0x285078U);  // the ground

  // An area that was covered comes back, and a second window shows the same at once.
  ASSERT_TRUE(Open());
  const xcb_window_t cover = mUser.MakeWindow({kLeft, kTop, kLeft + 150, kTop + 100});
  mUser.Destroy(cover);
  const auto again = SettledPicture();
  Close();
  EXPECT_EQ(again, picture);
}

TEST_F(EditorWindowTest, ShowsTheSameWithoutSharedMemory) {
  ASSERT_TRUE(Open());
  const auto shared = SettledPicture();
  Close();
  mPlug->Graphics()->ShareMemory(false);
  ASSERT_TRUE(Open());
  EXPECT_EQ(SettledPicture(), shared);
}

TEST_F(EditorWindowTest, OpensManyTimesAndLeavesNothing) {
  ASSERT_TRUE(Open());
  Close();
  const int threads = ThreadCount();
  const int descriptors = DescriptorCount();
  const size_t windows = mUser.ChildrenOf(mUser.Screen().root).size();
  for (int i = 0; i < kManyTimes; ++i) {
    ASSERT_TRUE(Open()) << i;
    if (i % 50 == 0) mUser.MoveTo(kLeft + i % 300, kTop + 40);
    Close();
    ASSERT_FALSE(mPlug->Graphics()->WindowIsOpen());
  }
  EXPECT_EQ(ThreadCount(), threads);
  EXPECT_EQ(DescriptorCount(), descriptors);
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mParent).empty(); }));
  EXPECT_EQ(mUser.ChildrenOf(mUser.Screen().root).size(), windows);
}

TEST_F(EditorWindowTest, TakesHostsThatDoNotPairTheirCalls) {
  Close();
  EXPECT_EQ(mPlug->Graphics()->GetWindow(), nullptr);
  ASSERT_TRUE(Open());
  const xcb_window_t first = Window();
  ASSERT_TRUE(Open());
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mParent) == std::vector{Window()}; }))
      << "the first window, " << first << ", is still there";
  Close();
  Close();
  EXPECT_FALSE(Open(XCB_NONE));
  EXPECT_FALSE(Open(0x1234567)) << "opened in a window that is not there";
  ASSERT_TRUE(Open());
  Dispatch(effClose);  // with the window open
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mParent).empty(); }));
}

TEST_F(EditorWindowTest, NeedsNoServerUntilItIsOpened) {
  const std::string display = getenv("DISPLAY");
  Dispatch(effClose);
  unsetenv("DISPLAY");
  MakePlug();
  ERect* rect = nullptr;
  EXPECT_EQ(Dispatch(effEditGetRect, 0, 0, &rect), 1);
  ASSERT_NE(rect, nullptr);
  EXPECT_EQ(rect->right, HostedPlug::kWidth);
  EXPECT_EQ(rect->bottom, HostedPlug::kHeight);
  EXPECT_FALSE(Open());
  EXPECT_EQ(Dispatch(effEditClose), 1);
  setenv("DISPLAY", display.c_str(), 1);
  EXPECT_TRUE(Open());
}

TEST_F(EditorWindowTest, OutlivesItsParent) {
  ASSERT_TRUE(Open());
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  ASSERT_TRUE(mPlug->Notes().EndsWith("begin 0"));
  mUser.Destroy(mParent);
  EXPECT_TRUE(mPlug->Notes().EndsWith("end 0"));
  mUser.Release(1);
  Close();
  mParent = mUser.MakeWindow({kLeft, kTop, kLeft + 300, kTop + 200});
  EXPECT_TRUE(Open());
}

TEST_F(EditorWindowTest, OutlivesTheServer) {
  ASSERT_TRUE(Open());
  mServer.Kill();
  AEffect* effect = mPlug->GetAEffect();
  effect->setParameter(effect, kLevel, 0.9F);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  Close();
}

TEST_F(EditorWindowTest, FollowsTheEditorsSize) {
  mPlug->onProbe = [this] { mPlug->Graphics()->Resize(350, 220); };
  ASSERT_TRUE(Open());
  Point(HostedPlug::kProbeRect);
  mUser.Click();
  EXPECT_TRUE(Eventually([&] {
    const X11Reply<xcb_get_geometry_reply_t> g(
        xcb_get_geometry_reply(mUser.Get(), xcb_get_geometry(mUser.Get(), Window()), nullptr));
    return g && g->width == 350 && g->height == 220;
  }));
  ERect* rect = nullptr;
  Dispatch(effEditGetRect, 0, 0, &rect);
  EXPECT_EQ(rect->right, 350);
}

TEST_F(EditorWindowTest, TwoInstancesKeepApart) {
  ASSERT_TRUE(Open());
  HostedPlug* first = mPlug;
  const xcb_window_t otherParent = mUser.MakeWindow({kLeft, kTop + 250, kLeft + 300, kTop + 450});
  MakePlug();
  ASSERT_TRUE(Open(otherParent));
  Point(HostedPlug::kProbeRect.L + 5, HostedPlug::kProbeRect.T + 255);
  mUser.Click();
  EXPECT_TRUE(mPlug->Notes().EndsWith("up 195 15"));
  Point(HostedPlug::kProbeRect.L + 5, HostedPlug::kProbeRect.T + 6);
  mUser.Click();
  EXPECT_TRUE(first->Notes().EndsWith("up 195 16"));
  Dispatch(effClose);
  mPlug = first;
  Point(HostedPlug::kProbeRect.L + 5, HostedPlug::kProbeRect.T + 7);
  mUser.Click();
  EXPECT_TRUE(first->Notes().EndsWith("up 195 17"));
}

// The host closes, with the lock in its hands, while the editor's thread wants that lock.
TEST_F(EditorWindowTest, ClosingLetsTheEditorThroughToTheLock) {
  ASSERT_TRUE(Open());
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  ASSERT_TRUE(mPlug->Notes().EndsWith("begin 0"));
  {
    const PlugLock::Guard once(mPlug->GetLock());
    const PlugLock::Guard twice(mPlug->GetLock());
    mUser.MoveTo(kLeft + 35, kTop + 10);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // it waits for the lock now
    Close();
    EXPECT_TRUE(mPlug->GetLock().IsMine());
  }
  EXPECT_FALSE(mPlug->GetLock().IsMine());
  const auto entries = mPlug->Notes().Take();
  EXPECT_EQ(entries.back(), "end 0");
  EXPECT_EQ(entries.size(), 3U) << ::testing::PrintToString(entries);  // the drag came through
  ExpectBalancedEdits(entries);
}

TEST_F(EditorWindowTest, ClosesFromInsideItsOwnCalls) {
  mPlug->onProbe = [this] { Close(); };
  ASSERT_TRUE(Open());
  Point(HostedPlug::kProbeRect);
  mUser.Click();
  EXPECT_TRUE(Eventually([&] { return !mPlug->Graphics()->WindowIsOpen(); }));
  mPlug->onProbe = nullptr;
  EXPECT_TRUE(Open());
}

TEST_F(EditorWindowTest, DrawsWhileTheHostAutomates) {
  ASSERT_TRUE(Open());
  AEffect* effect = mPlug->GetAEffect();
  for (int i = 0; i < 200; ++i) {
    effect->setParameter(effect, i % 3, static_cast<float>(i % 11) / 10.0F);
    if (i % 20 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(45));
  }
  const auto picture = SettledPicture();
  Close();
  EXPECT_EQ(picture, Canvas());
}

class ShallowServerTest : public EditorWindowTest {
 protected:
  ShallowServerTest() : EditorWindowTest(16) {}
};

TEST_F(ShallowServerTest, SixteenBitsShowTheUpperBitsOfEachColour) {
  ASSERT_TRUE(Open());
  const IRECT corner{0, 0, 2, 1};
  EXPECT_TRUE(Eventually([&] {
    const X11Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
        mUser.Get(),
        xcb_get_image(mUser.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, Window(), 0, 0, 2, 1, ~0U), nullptr));
    if (!image) return false;
    uint16_t pixel;
    memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
    return pixel == ((40 >> 3) << 11 | (80 >> 2) << 5 | 120 >> 3);
  }));
}

class PaletteServerTest : public EditorWindowTest {
 protected:
  PaletteServerTest() : EditorWindowTest(8) {}
};

TEST_F(PaletteServerTest, AServerWithoutPlainColoursOpensNothing) {
  EXPECT_FALSE(Open());
  EXPECT_EQ(Dispatch(effEditClose), 1);
}

}  // namespace
