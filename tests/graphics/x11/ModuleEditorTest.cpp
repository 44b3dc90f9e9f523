// The built module's editor in a window, by its binary interface alone, and the program that shows
// it.
#include <dlfcn.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "graphics/x11/ChildProcess.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

const std::string kModule = TOLMARA_BINARY_DIR "/Tolmara.so";

class ModuleEditorTest : public ::testing::Test {
 protected:
  static constexpr int kLeft = 40, kTop = 30;

  ModuleEditorTest() : mServer(24, {"-screen", "0", "1200x700x24"}) {
    sJournal = &mJournal;
    mModule = dlopen(kModule.c_str(), RTLD_LAZY | RTLD_LOCAL);
    EXPECT_NE(mModule, nullptr) << dlerror();
    const auto entry =
        reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(mModule, "VSTPluginMain"));
    mEffect = entry(&ModuleEditorTest::Answer);
    Dispatch(effOpen);
    mEffect->dispatcher(mEffect, effSetSampleRate, 0, 0, nullptr, 44100.0F);
    Dispatch(effSetBlockSize, 0, 256);
    Dispatch(effMainsChanged, 0, 1);
    mParent = mUser.MakeWindow({kLeft, kTop, kLeft + 960, kTop + 600});
    mUser.SetFocus(mParent);
  }
  ~ModuleEditorTest() override {
    Dispatch(effClose);
    dlclose(mModule);
  }

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr) {
    return mEffect->dispatcher(mEffect, opcode, index, value, ptr, 0.0F);
  }
  bool Open() {
    return Dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(uintptr_t{mParent})) == 1;
  }
  xcb_window_t Window() { return mUser.ChildrenOf(mParent).at(0); }
  void Point(int x, int y) { mUser.MoveTo(kLeft + x + 2, kTop + y + 3); }
  void PlayBlock() {
    std::vector<float> in(256, 0.1F), left(256), right(256);
    float* inputs[] = {in.data(), in.data()};
    float* outputs[] = {left.data(), right.data()};
    mEffect->processReplacing(mEffect, inputs, outputs, 256);
  }

  static VstIntPtr Answer(AEffect*, int32_t opcode, int32_t index, VstIntPtr, void*, float) {
    const char* name = opcode == audioMasterAutomate    ? "set "
                       : opcode == audioMasterBeginEdit ? "begin "
                       : opcode == audioMasterEndEdit   ? "end "
                                                        : nullptr;
    if (name) sJournal->Note(name + std::to_string(index));
    return 0;
  }

  static Journal* sJournal;
  XServer mServer;
  XUser mUser;
  Journal mJournal;
  void* mModule;
  AEffect* mEffect;
  xcb_window_t mParent;
};
Journal* ModuleEditorTest::sJournal = nullptr;

TEST_F(ModuleEditorTest, ItsControlsFollowMouseKeyboardAndMenu) {
  ASSERT_TRUE(Open());
  // Delay, by a drag upward.
  const float delay = mEffect->getParameter(mEffect, 0);
  Point(722, 149);
  mUser.Press(1);
  ASSERT_TRUE(mJournal.Comes("begin 0"));
  Point(722, 120);
  ASSERT_TRUE(mJournal.Comes("set 0"));
  mUser.Release(1);
  ASSERT_TRUE(mJournal.Comes("end 0"));
  EXPECT_GT(mEffect->getParameter(mEffect, 0), delay);
  // Gain, typed.
  Point(875, 496);
  mUser.Click(3);
  ASSERT_TRUE(mJournal.Comes("end 6"));
  ASSERT_TRUE(Eventually([&] { return mUser.Focus() == Window(); }));
  mUser.Type("-3.5");
  mUser.Type(0xFF0D);
  ASSERT_TRUE(mJournal.Comes("end 6"));
  EXPECT_FLOAT_EQ(mEffect->getParameter(mEffect, 6), (60.0F - 3.5F) / 120.0F);
  // The number of blocks, from its menu of 13 items: the last one.
  Point(632, 132);
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).size() == 1; }));
  mUser.Type(0xFF57);
  mUser.Type(0xFF0D);
  ASSERT_TRUE(mJournal.Comes("end 39"));
  EXPECT_EQ(mEffect->getParameter(mEffect, 39), 1.0F);
  // The first switch.
  Point(75, 360);
  mUser.Click();
  ASSERT_TRUE(mJournal.Comes("end 11"));
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
    Point(722, 149 - i);
    mUser.Press(1);
    Point(722, 100 + i);
    if (i % 3 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(60));
    if (i % 2 == 0) mUser.Release(1);
    EXPECT_EQ(Dispatch(effEditClose), 1);
    mUser.Release(1);
  }
  end = true;
  audio.join();
  presets.join();
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mParent).empty(); }));
}

// What the program's window shows, found without a window manager.
TEST_F(ModuleEditorTest, TheProgramShowsItAndEndsWithItsWindow) {
  const auto windows = mUser.ChildrenOf(mUser.Screen().root);
  auto program = ChildProcess::Start(
      {TOLMARA_BINARY_DIR "/tolmara", "editor", "--plugin", kModule, "--preset", "Cathedral"});
  ASSERT_TRUE(program);
  xcb_window_t host = XCB_NONE;
  ASSERT_TRUE(Eventually([&] {
    const auto now = mUser.ChildrenOf(mUser.Screen().root);
    host = now.size() > windows.size() ? now.back() : XCB_NONE;
    return host && mUser.ChildrenOf(host).size() == 1;
  }));
  const xcb_window_t editor = mUser.ChildrenOf(host)[0];
  EXPECT_TRUE(Eventually([&] {
    const auto pixels = mUser.Picture(editor, {0, 0, 1, 1});
    return !pixels.empty() && pixels[0] != 0;
  }));
  EXPECT_EQ(mUser.Property(host, XCB_ATOM_WM_NAME), "Tolmara");

  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = host;
  message.type = mUser.Atom("WM_PROTOCOLS");
  message.data.data32[0] = mUser.Atom("WM_DELETE_WINDOW");
  xcb_send_event(mUser.Get(), 0, host, 0, reinterpret_cast<const char*>(&message));
  mUser.Sync();
  EXPECT_EQ(program->Wait(), 0);

  const std::string display = getenv("DISPLAY");
  unsetenv("DISPLAY");
  auto blind = ChildProcess::Start({TOLMARA_BINARY_DIR "/tolmara", "editor", "--plugin", kModule});
  EXPECT_EQ(blind->Wait(), 5);
  setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace
