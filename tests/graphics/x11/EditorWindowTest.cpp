// The editor's window: opening, closing, and what can go wrong around it.
#include <malloc.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "tests/graphics/x11/EditorHost.h"

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int kManyTimes = 60;
#else
constexpr int kManyTimes = 1000;
#endif

constexpr IRECT kAll{0, 0, HostedPlug::kWidth, HostedPlug::kHeight};

class EditorWindowTest : public EditorHostTest {
 protected:
  IRECT Size() {
    ERect* rect = nullptr;
    Dispatch(effEditGetRect, 0, 0, &rect);
    return rect ? IRECT(rect->left, rect->top, rect->right, rect->bottom) : IRECT();
  }
};

class ServerTest : public EditorHostTest, public ::testing::WithParamInterface<const char*> {
 protected:
  ServerTest() : EditorHostTest(GetParam()) {}
  // Which nobody fills.
  bool HasPalette() const { return mUser.Screen().root_depth == 8; }
  static bool SharesMemory() {
    std::stringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    return maps.str().find("memfd:tolmara-editor") != std::string::npos;
  }
  bool ShowsCanvas() {
    std::vector<uint32_t> expected = Canvas();
    for (uint32_t& p : expected) {
      if (mUser.Screen().root_depth == 16) p = (p >> 8 & 0xF800) | (p >> 5 & 0x7E0) | (p >> 3 & 31);
    }
    return Eventually([&] { return mUser.Picture(Window(), kAll) == expected; });
  }
};

TEST_P(ServerTest, ShowsTheCanvasPixelByPixel) {
  ASSERT_EQ(Open(), !HasPalette());
  if (HasPalette()) return;
  EXPECT_EQ(SharesMemory(), !std::strstr(GetParam(), "MIT-SHM"));
  EXPECT_TRUE(ShowsCanvas());
  for (int i = 0; i < 200; ++i) Set(i % 3, i % 11 / 10.0);  // while it draws
  EXPECT_TRUE(ShowsCanvas());
  // An area that was covered comes back, and so does all in a second window.
  mUser.Destroy(mUser.MakeWindow({kLeft, kTop, kLeft + 150, kTop + 100}));
  EXPECT_TRUE(ShowsCanvas());
  Close();
  ASSERT_TRUE(Open());
  EXPECT_TRUE(ShowsCanvas());
}

TEST_P(ServerTest, ClosesBesideAServerThatHasStopped) {
  ASSERT_EQ(Open(), !HasPalette());
  if (HasPalette()) return;
  mServer.Signal(SIGSTOP);
  // Until nothing more goes out, where the server would have to take it in.
  for (int draws = -1; draws != mPlug->probeDraws;) {
    draws = mPlug->probeDraws;
    Graphics().SetAllControlsDirty();
    std::this_thread::sleep_for(std::chrono::milliseconds(SharesMemory() ? 1 : 200));
  }
  Close();
  EXPECT_FALSE(Graphics().WindowIsOpen());
  mServer.Signal(SIGCONT);
  EXPECT_TRUE(Open());
}
INSTANTIATE_TEST_SUITE_P(Servers, ServerTest,
                         ::testing::Values(XServer::kUsual, "-extension MIT-SHM",
                                           "-screen 0 800x600x16", "-screen 0 800x600x8"));

TEST_F(EditorWindowTest, TakesTheVisualOfItsParentButNoneWithAPalette) {
  const uint32_t ground = Canvas()[0];
  std::set<std::pair<int, int>> seen;
  for (auto d = xcb_screen_allowed_depths_iterator(&mUser.Screen()); d.rem; xcb_depth_next(&d)) {
    for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
      if (d.data->depth < 24 || !seen.insert({d.data->depth, v.data->_class}).second) continue;
      mParent = mUser.MakeWindow(kAll, 0, d.data->depth, v.data->visual_id);
      ASSERT_TRUE(Open());
      const bool isPlain = v.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
      const auto attributes = mUser.Ask<xcb_get_window_attributes_reply_t>(
          xcb_get_window_attributes(mUser.Get(), Window()));
      EXPECT_EQ(attributes->visual, isPlain ? v.data->visual_id : mUser.Screen().root_visual);
      const uint32_t opaque = isPlain && d.data->depth == 32 ? 0xFF000000 : 0;
      EXPECT_TRUE(Eventually([&] {
        return mUser.Picture(Window(), {0, 0, 1, 1}) == std::vector{ground | opaque};
      }));
      Close();
    }
  }
}

TEST_F(EditorWindowTest, DrawsOnePixelMoreThanWhatHasChanged) {
  ASSERT_TRUE(Open());
  ASSERT_TRUE(Eventually([&] { return mPlug->probeDraws > 0; }));
  const int before = mPlug->probeDraws;
  Set(kColour, 1.0);  // whose right edge is the probe's left one
  EXPECT_TRUE(Eventually([&] { return mPlug->probeDraws > before; }));
}

TEST_F(EditorWindowTest, OpensManyTimesAndLeavesNothing) {
  const auto openAndClose = [&](int i) {
    ASSERT_TRUE(Open()) << i;
    if (i % 50 == 0) Point(i % 300, 40);
    if (i % 10 == 0) {
      std::thread([&] { Close(); }).join();
    } else {
      Close();
    }
    ASSERT_FALSE(Graphics().WindowIsOpen());
  };
  for (int i = 0; i < 20; ++i) openAndClose(i);
  const int threads = ThreadCount();
  const int descriptors = DescriptorCount();
  const std::size_t bytes = mallinfo2().uordblks;
  for (int i = 0; i < kManyTimes; ++i) ASSERT_NO_FATAL_FAILURE(openAndClose(i));
  EXPECT_EQ(ThreadCount(), threads);
  EXPECT_EQ(DescriptorCount(), descriptors);
  EXPECT_LT(mallinfo2().uordblks, bytes + 10'000);
  EXPECT_TRUE(Eventually([&] { return Window() == XCB_NONE; }));
}

TEST_F(EditorWindowTest, TakesHostsThatDoNotPairTheirCalls) {
  Close();
  EXPECT_EQ(Graphics().GetWindow(), nullptr);
  ASSERT_TRUE(Open());
  ASSERT_TRUE(Open());
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mParent).size() == 1; }))
      << "the first window is still there";
  EXPECT_EQ(Graphics().GetWindow(), reinterpret_cast<void*>(uintptr_t{Window()}));
  Close();
  Close();
  EXPECT_FALSE(Open(XCB_NONE));
  EXPECT_FALSE(Open(0x1234567)) << "opened in a window that is not there";
  ASSERT_TRUE(Open());
  EndPlug();  // with the window open
  EXPECT_TRUE(Eventually([&] { return Window() == XCB_NONE; }));
}

TEST_F(EditorWindowTest, NeedsNoServerUntilItIsOpened) {
  const std::string display = getenv("DISPLAY");
  EndPlug();
  for (const char* wrong : {"", "nonsense", ":4711"}) {
    setenv("DISPLAY", wrong, 1);
    if (!*wrong) unsetenv("DISPLAY");
    MakePlug();
    EXPECT_EQ(Size(), IRECT(0, 0, HostedPlug::kWidth, HostedPlug::kHeight));
    EXPECT_FALSE(Open());
    EXPECT_EQ(Dispatch(effEditClose), 1);
    EndPlug();
  }
  setenv("DISPLAY", display.c_str(), 1);
  MakePlug();
  EXPECT_TRUE(Open());
}

TEST_F(EditorWindowTest, OutlivesItsParentAndTheServer) {
  for (const bool serverDies : {false, true}) {
    ASSERT_TRUE(Open());
    PressAt(HostedPlug::kLevelRect);
    ASSERT_TRUE(Notes().Comes("begin 0"));
    if (serverDies) {
      mServer.Kill();
    } else {
      mUser.Destroy(mParent);
      mUser.Release(1);
      mParent = mUser.MakeWindow({kLeft, kTop, kLeft + 300, kTop + 200});
    }
    EXPECT_TRUE(Notes().Comes("end 0"));
    Set(kLevel, 0.9);
    Close();
  }
}

TEST_F(EditorWindowTest, FollowsTheEditorsSize) {
  mPlug->onProbe = [this] { Graphics().Resize(350, 220); };
  ASSERT_TRUE(Open());
  ClickAt(HostedPlug::kProbeRect);
  EXPECT_TRUE(Eventually([&] { return mUser.Place(Window()) == IRECT(0, 0, 350, 220); }));
  EXPECT_EQ(Size(), IRECT(0, 0, 350, 220));
}

TEST_F(EditorWindowTest, TwoInstancesKeepApart) {
  ASSERT_TRUE(Open());
  HostedPlug* first = mPlug;
  AEffect* firstEffect = mEffect;
  MakePlug();
  ASSERT_TRUE(Open(mUser.MakeWindow({kLeft, kTop + 250, kLeft + 300, kTop + 450})));
  ClickAt(195, 265);
  EXPECT_TRUE(Notes().Comes("up 195 15"));
  ClickAt(195, 16);
  EXPECT_TRUE(first->Notes().Comes("up 195 16"));
  EndPlug();
  mPlug = first;
  mEffect = firstEffect;
  ClickAt(195, 17);
  EXPECT_TRUE(Notes().Comes("up 195 17"));
}

// The host closes, with the lock in its hands, while the editor's thread wants that lock.
TEST_F(EditorWindowTest, ClosingLetsTheEditorThroughToTheLock) {
  ASSERT_TRUE(Open());
  PressAt(HostedPlug::kProbeRect);
  ASSERT_TRUE(Notes().Comes("down 215 35 L"));
  {
    const PlugLock::Guard once(mPlug->GetLock());
    const PlugLock::Guard twice(mPlug->GetLock());
    Point(195, 15);
    ASSERT_TRUE(Notes().Comes("drag"));  // and from there to the lock
    Close();
    EXPECT_TRUE(mPlug->GetLock().IsMine());
  }
  EXPECT_FALSE(mPlug->GetLock().IsMine());
  EXPECT_EQ(Notes().Take(), (Entries{"set 0 0.500", "up 195 15"}));
}

TEST_F(EditorWindowTest, ClosesFromInsideItsOwnCalls) {
  mPlug->onProbe = [this] { Close(); };
  ASSERT_TRUE(Open());
  ClickAt(HostedPlug::kProbeRect);
  EXPECT_TRUE(Eventually([&] { return !Graphics().WindowIsOpen(); }));
  EXPECT_TRUE(Open());
}

}  // namespace
