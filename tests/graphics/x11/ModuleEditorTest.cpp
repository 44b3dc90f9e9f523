// The built module's editor in a window, by its binary interface alone, and the program that shows
// it.
#include <atomic>
#include <thread>

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/lice/LICE_PNG.h"
#include "graphics/x11/desktop/ChildProcess.h"
#include "tests/graphics/x11/ModuleHost.h"

namespace {

const std::string kTool = TOLMARA_BINARY_DIR "/tolmara";

// The server takes images only in several requests.
class ModuleEditorTest : public ModuleHostTest {
 protected:
  ModuleEditorTest()
      : ModuleHostTest("-screen 0 1200x700x24 -extension MIT-SHM -maxbigreqsize 1") {}

  static int Run(const std::vector<std::string>& command) {
    auto program = ChildProcess::Start(command);
    return program ? program->Wait() : -1;
  }
};

TEST_F(ModuleEditorTest, ItsControlsFollowMouseKeyboardAndMenu) {
  ASSERT_TRUE(Open());
  // Delay, by a drag upward.
  const double delay = Normalized(0);
  PressAt(722, 149);
  ASSERT_TRUE(mJournal.Comes("begin 0"));
  Point(722, 120);
  mUser.Release(1);
  ASSERT_TRUE(mJournal.Comes("end 0"));
  EXPECT_GT(Normalized(0), delay);
  // Gain, typed.
  Point(875, 496);
  mUser.Click(3);
  ASSERT_TRUE(mJournal.Comes("end 6"));
  ASSERT_TRUE(Eventually([&] { return mUser.Focus() == Window(); }));
  mUser.Type("-3.5");
  mUser.Type(kX11Return);
  ASSERT_TRUE(mJournal.Comes("end 6"));
  EXPECT_NEAR(Normalized(6), (60.0 - 3.5) / 120.0, 1e-6);
  // The number of blocks, from its menu of 13 items: the last one.
  ClickAt(632, 132);
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).size() == 1; }));
  mUser.Type(kX11End);
  mUser.Type(kX11Return);
  ASSERT_TRUE(mJournal.Comes("end 39"));
  EXPECT_EQ(Normalized(39), 1.0);
}

TEST_F(ModuleEditorTest, OpensAndClosesWhileSoundRunsAndPresetsStorm) {
  std::atomic<bool> end{false};
  std::thread audio([&] {
    while (!end) PlayBlock();
  });
  std::thread presets([&] {
    for (int i = 0; !end; ++i) {
      Dispatch(effSetProgram, 0, i % 28);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  for (int i = 0; i < 15; ++i) {
    ASSERT_TRUE(Open());
    PressAt(722, 149 - i);
    Point(722, 100 + i);
    if (i % 3 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(60));
    if (i % 2 == 0) mUser.Release(1);
    EXPECT_EQ(Dispatch(effEditClose), 1);
    mUser.Release(1);
  }
  end = true;
  audio.join();
  presets.join();
  EXPECT_TRUE(Eventually([&] { return Window() == XCB_NONE; }));
}

// Found without a window manager.
TEST_F(ModuleEditorTest, TheProgramShowsItAsItsPictureAndEndsWithItsWindow) {
  const std::string file = ::testing::TempDir() + "tolmara-editor.png";
  ASSERT_EQ(Run({kTool, "screenshot", file, "--preset", "Plate-small"}), 0);
  const auto windows = mUser.ChildrenOf(mUser.Screen().root);
  auto program =
      ChildProcess::Start({kTool, "editor", "--plugin", kModule, "--preset", "Plate-small"});
  ASSERT_TRUE(program);
  ASSERT_TRUE(Eventually([&] {
    const auto now = mUser.ChildrenOf(mUser.Screen().root);
    mParent = now.size() > windows.size() ? now.back() : XCB_NONE;
    return mParent && Window();
  }));
  const std::unique_ptr<LICE_IBitmap> png(LICE_LoadPNG(file.c_str()));
  ASSERT_NE(png, nullptr);
  const auto expected = RgbOf(*png);
  EXPECT_TRUE(Eventually([&] { return mUser.Picture(Window(), {0, 0, 960, 600}) == expected; }));
  EXPECT_EQ(mUser.Text(mParent, XCB_ATOM_WM_NAME), "Tolmara");

  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = mParent;
  message.type = mUser.Atom("WM_PROTOCOLS");
  message.data.data32[0] = mUser.Atom("WM_DELETE_WINDOW");
  mUser.Send(mParent, 0, &message);
  EXPECT_EQ(program->Wait(), 0);

  EXPECT_EQ(Run({kTool, "editor", "--plugin", kModule, "--preset", "No Such Place"}), 4);
  const std::string display = getenv("DISPLAY");
  unsetenv("DISPLAY");
  EXPECT_EQ(Run({kTool, "editor", "--plugin", kModule}), 5);
  setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace
