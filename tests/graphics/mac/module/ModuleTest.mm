// The built bundle in a host's window, by its binary interface alone, with a real mouse and keys.
#import <AppKit/AppKit.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "graphics/lice/LICE.h"
#include "iplug/vst2/vst2.h"
#include "tests/graphics/x11/XServer.h"

@interface HostWindow : NSWindow
@end

@implementation HostWindow

// Else the keys would go nowhere.
- (BOOL)canBecomeKeyWindow {
  return YES;
}

@end

namespace {

constexpr int kWidth = 960, kHeight = 600, kLeft = 100, kTop = 60;

VstIntPtr Answer(AEffect*, std::int32_t, std::int32_t, VstIntPtr, void*, float) { return 0; }

AEffect* LoadEffect() {
  NSBundle* const bundle = [NSBundle bundleWithPath:@TOLMARA_BINARY_DIR "/Tolmara.bundle"];
  if (![bundle load]) return nullptr;
  void* const module = dlopen([[bundle executablePath] UTF8String], RTLD_LAZY | RTLD_LOCAL);
  void* const entry = dlsym(module, "VSTPluginMain");
  return entry ? reinterpret_cast<AEffect* (*)(audioMasterCallback)>(entry)(&Answer) : nullptr;
}

// That of the command-line host, as a server of 24 bits counts pixels: 0xRRGGBB.
std::vector<uint32_t> Screenshot() {
  const std::string folder = ::testing::TempDir() + "tolmara-module";
  std::filesystem::create_directories(folder + "/resources");
  std::ofstream(folder + "/Tolmara.so") << "";  // beside which the program finds the pictures
  std::filesystem::remove(folder + "/resources/img");
  std::filesystem::create_symlink(TOLMARA_SOURCE_DIR "/resources/img", folder + "/resources/img");
  const std::string file = folder + "/editor.png";
  const std::string command =
      "VST_PATH=" + folder + " " TOLMARA_BINARY_DIR "/tolmara screenshot " + file;
  LICE_MemBitmap png;
  if (std::system(command.c_str()) != 0 || !LICE_LoadPNG(file.c_str(), &png)) return {};
  std::vector<uint32_t> pixels;
  for (int i = 0; i < png.getWidth() * png.getHeight(); ++i) {
    const LICE_pixel p = LICE_GetPixel(&png, i % png.getWidth(), i / png.getWidth());
    pixels.push_back((p >> 8 & 0xFF) << 16 | (p >> 16 & 0xFF) << 8 | p >> 24);
  }
  return pixels;
}

// Works through the user's events until the condition is true or much time is over.
bool Comes(const std::function<bool()>& condition) {
  NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:20];
  while ([end timeIntervalSinceNow] > 0) {
    NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                              untilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]
                                                 inMode:NSDefaultRunLoopMode
                                                dequeue:YES];
    if (event) [NSApp sendEvent:event];
    if (!event && condition()) return true;
  }
  return false;
}

class User : public XUser {
 public:
  void Point(int x, int y) {
    MoveTo(kLeft + x + 2, kTop + y + 3);
    Settle();
  }
  void ClickAt(int x, int y, int button) {
    Point(x, y);
    Press(button);
    Settle();
    Release(button);
    Settle();
  }
  static void Settle() {
    int turns = 0;
    Comes([&] { return ++turns > 2; });
  }
};

TEST(Module, ShowsItsPictureAndFollowsMouseAndKeys) {
  const CGFloat bottom = NSHeight([[NSScreen mainScreen] frame]) - kTop - kHeight;
  NSWindow* const window =
      [[HostWindow alloc] initWithContentRect:NSMakeRect(kLeft, bottom, kWidth, kHeight)
                                    styleMask:NSWindowStyleMaskBorderless
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
  [window orderFront:nil];
  AEffect* const effect = LoadEffect();
  ASSERT_NE(effect, nullptr);
  const auto dispatch = [effect](int opcode, void* ptr = nullptr) {
    return effect->dispatcher(effect, opcode, 0, 0, ptr, 0.0F);
  };
  const auto value = [effect](int param) { return effect->getParameter(effect, param); };
  dispatch(effOpen);
  EXPECT_EQ(dispatch(effEditOpen), 0);
  ASSERT_EQ(dispatch(effEditOpen, [window contentView]), 1);
  User user;
  const auto expected = Screenshot();
  ASSERT_EQ(expected.size(), size_t{kWidth * kHeight});
  EXPECT_TRUE(Comes([&] {
    return user.Picture(user.Screen().root, {kLeft, kTop, kLeft + kWidth, kTop + kHeight}) ==
           expected;
  }));

  user.SetFocus(static_cast<xcb_window_t>(reinterpret_cast<uintptr_t>([window windowRef])));
  user.ClickAt(20, 20, 1);  // GNUstep loses the release of the first one
  user.ClickAt(20, 20, 1);
  const float delay = value(0);
  user.Point(722, 149);
  user.Press(1);
  user.Point(722, 120);
  user.Release(1);
  EXPECT_TRUE(Comes([&] { return value(0) > delay; }));
  // Gain, typed; a click elsewhere takes it.
  user.ClickAt(875, 496, 3);
  user.Type("-3.5");
  user.ClickAt(20, 20, 1);
  EXPECT_TRUE(Comes([&] { return std::abs(value(6) - 56.5F / 120.0F) < 1e-6F; })) << value(6);
  EXPECT_EQ(dispatch(effEditClose), 1);
  EXPECT_EQ([[[window contentView] subviews] count], 0U);
  dispatch(effClose);
  [window close];
}

}  // namespace
