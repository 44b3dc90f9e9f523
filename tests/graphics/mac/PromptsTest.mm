// Menus, typed values, dialogs, links and the bundle's files.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "graphics/controls/ILinkControls.h"
#include "graphics/mac/CocoaText.h"
#include "graphics/mac/IGraphicsNSMenu.h"
#include "tests/graphics/mac/CocoaHost.h"

namespace {

std::function<void(NSMenu*, NSEvent*)> gOnMenu;
void PopUp(id, SEL, NSMenu* menu, NSEvent* event, NSView*) { gOnMenu(menu, event); }

void Choose(NSMenu* menu, NSInteger index) {
  NSMenuItem* const item = [menu itemAtIndex:index];
  [[item target] performSelector:[item action] withObject:item];
}

class MenuTest : public CocoaTest {
 protected:
  MenuTest()
      : replaced([NSMenu class], @selector(popUpContextMenu:withEvent:forView:), PopUp, true) {}

  Replaced replaced;
  IPopupMenu menu;
  IRECT rect{20, 30, 60, 45};
};

TEST_F(MenuTest, ShowsItsItemsAndAnswersTheChoice) {
  IPopupMenu inner;
  inner.AddItem("deep");
  inner.AddItem("itself", &menu);  // a menu may hold itself
  menu.SetPrefix(2);
  menu.AddItem("plain");
  menu.AddItem("title", -1, IPopupMenuItem::kTitle | IPopupMenuItem::kChecked);
  menu.AddSeparator();
  menu.AddItem("off \xE9", -1, IPopupMenuItem::kDisabled);
  menu.AddItem("more", &inner);
  Open();
  gOnMenu = [&](NSMenu* shown, NSEvent* event) {
    ASSERT_EQ([shown numberOfItems], 5);
    EXPECT_TRUE([[[shown itemAtIndex:0] title] isEqual:@"01: plain"]);
    NSMenuItem* const title = [shown itemAtIndex:1];
    EXPECT_TRUE([[title title] isEqual:@"02: title"]);
    EXPECT_EQ([title indentationLevel], 1);
    EXPECT_EQ([title state], NSOnState);
    EXPECT_EQ([[shown itemAtIndex:0] state], NSOffState);
    EXPECT_TRUE([[shown itemAtIndex:2] isSeparatorItem]);
    EXPECT_FALSE([[shown itemAtIndex:3] isEnabled]);
    EXPECT_TRUE([[[shown itemAtIndex:3] title] isEqual:CocoaText("04: off \xC3\xA9")]);
    EXPECT_FALSE([shown autoenablesItems]);
    // Four units below the rectangle's lower left corner, in the window's coordinates.
    EXPECT_TRUE(NSEqualPoints([event locationInWindow], NSMakePoint(kLeft + 20, kBottom + 55 - 4)));
    EXPECT_EQ([event windowNumber], [window windowNumber]);
    Choose([[shown itemAtIndex:4] submenu], 0);
  };
  EXPECT_EQ(graphics->CreateIPopupMenu(&menu, &rect), &inner);
  EXPECT_EQ(inner.GetChosenItemIdx(), 0);
  gOnMenu = [](NSMenu*, NSEvent*) {};
  EXPECT_EQ(graphics->CreateIPopupMenu(&menu, &rect), nullptr);
  gOnMenu = [&](NSMenu* shown, NSEvent*) { Choose(shown, 3), graphics->CloseWindow(); };
  EXPECT_EQ(graphics->CreateIPopupMenu(&menu, &rect), nullptr);
  gOnMenu = [](NSMenu*, NSEvent*) { ADD_FAILURE() << "there is no window"; };
  EXPECT_EQ(graphics->CreateIPopupMenu(&menu, &rect), nullptr);
}

TEST_F(MenuTest, OpenedByAPressIsOneEditAndTakesTheRelease) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 100, 100), kColour);
  control->DisablePrompt(false);
  control->onPress = [&] { control->PromptUserInput(); };
  IGraphicsCocoa* const view = Open();
  gOnMenu = [](NSMenu* shown, NSEvent*) {
    EXPECT_EQ([[shown itemAtIndex:1] state], NSOnState);
    Choose(shown, 2);
  };
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20)];
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 2 1.000", "changed 2", "begin 2", "end 2"}));
  EXPECT_EQ(control->TakeLog(), "down 10 20 L;");
  [view mouseMoved:Mouse(NSMouseMoved, 11, 20)];
  EXPECT_EQ(plug.TakeCalls(), Calls{});
}

class TextEntryTest : public CocoaTest {
 protected:
  LogControl* control = Attach<LogControl>(IRECT(0, 0, 100, 100), kLevel);
  IText text;
  IRECT rect{20, 30, 70, 46};

  void OpenField(const char* str, IParam* param) {
    graphics->CreateTextEntry(control, &text, &rect, str, param);
  }
};

TEST_F(TextEntryTest, LooksAsItsStyleSays) {
  text.mAlign = IText::kAlignFar;
  text.mTextEntryBGColor = kColorGreen;
  text.mSize = 20;
  IGraphicsCocoa* const view = Open();
  graphics->CreateTextEntry(nullptr, &text, &rect, "1", nullptr);
  EXPECT_EQ(Field(), nil);
  OpenField("0.25", plug.GetParam(kLevel));
  NSTextField* const field = Field();
  ASSERT_NE(field, nil);
  EXPECT_TRUE(NSEqualRects([field frame], NSMakeRect(20, kHeight - 46, 50, 16)));
  EXPECT_TRUE([[field stringValue] isEqual:@"0.25"]);
  EXPECT_EQ([field alignment], NSRightTextAlignment);
  EXPECT_EQ([[field font] pointSize], 18.0);
  EXPECT_EQ([[field backgroundColor] greenComponent], 1.0);
  EXPECT_FALSE([field isBordered] || [field isBezeled]);
  OpenField("0.5", plug.GetParam(kLevel));  // there is one
  EXPECT_EQ([[view subviews] count], 1U);
  // Drags wait for its end; a wheel ends it without its text.
  [view mouseDown:Mouse(NSLeftMouseDown, 5, 5)];
  [view mouseDragged:Mouse(NSLeftMouseDragged, 9, 9)];
  EXPECT_EQ(control->TakeEvents(), Calls{});
  [view mouseUp:Mouse(NSLeftMouseUp, 9, 9)];
  plug.TakeCalls();
  TypeInto(@"1");
  [view scrollWheel:Wheel(5, 5, 1)];
  EXPECT_EQ([[view subviews] count], 0U);
  EXPECT_EQ([window firstResponder], view);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
}

TEST_F(TextEntryTest, TakesOnlyWhatItsParameterAllowsAndGivesItOnce) {
  const struct {
    int param;
    NSString* typed;
    const char* shown;
    const char* set;  // null: the value stays
  } cases[] = {{kLevel, @"0a.7x5", "0.75", "set 0 0.750"},
               {kLevel, @"0.123456789", "0.12345", "set 0 0.123"},  // seven characters
               {kCount, @"1.5", "15", "set 1 1.000"},
               {kColour, @"2blue", "2", nullptr},
               {kOnOff, @"+-on1", "+-1", nullptr},
               {kNegated, @"-3", "-3", "set 4 0.250"}};
  IGraphicsCocoa* const view = Open();
  for (const auto& [param, typed, shown, set] : cases) {
    auto* const edited = Attach<LogControl>(IRECT(0, 0, 9, 9), param);
    graphics->CreateTextEntry(edited, &text, &rect, "8", plug.GetParam(param));
    TypeInto(typed);
    EXPECT_STREQ([[[Field() currentEditor] string] UTF8String], shown);
    EndField();
    Calls expected{"begin " + std::to_string(param)};
    if (set) expected.insert(expected.end(), {set, "changed " + std::to_string(param)});
    expected.push_back("end " + std::to_string(param));
    EXPECT_EQ(plug.TakeCalls(), expected) << shown;
    EXPECT_EQ([[view subviews] count], 0U);
  }
}

TEST_F(TextEntryTest, WithoutAParameterTheControlGetsAnyText) {
  IGraphicsCocoa* const view = Open();
  OpenField(nullptr, nullptr);
  TypeInto(@"any text \u00e9 of any length");
  EndField();
  EXPECT_EQ(control->TakeLog(), "text any text \xC3\xA9 of any length;");
  EXPECT_EQ([[view subviews] count], 0U);
  EXPECT_EQ(plug.TakeCalls(), Calls{});
}

std::function<NSInteger(id)> gOnRun;
NSInteger RunPanel(id panel, SEL) { return gOnRun(panel); }
NSString* gPath;
NSURL* Url(id, SEL) { return [NSURL fileURLWithPath:gPath]; }
std::vector<std::string> gOpened;
BOOL OpenAddress(id, SEL, NSURL* url) {
  gOpened.push_back([[url absoluteString] UTF8String]);
  return NO;
}

using DialogTest = CocoaTest;

TEST_F(DialogTest, AMessageBoxHasTheButtonsOfItsType) {
  const Replaced run([NSAlert class], @selector(runModal), RunPanel);
  const struct {
    int type;
    const char* buttons;
    NSInteger pressed;
    int answer;
  } cases[] = {{0, "OK ", 0, 1},
               {1, "OK Cancel ", 1, 2},
               {1, "OK Cancel ", -9, 2},
               {3, "Yes No Cancel ", 0, 6},
               {3, "Yes No Cancel ", 2, 2},
               {4, "Yes No ", 1, 7},
               {77, "OK ", 0, 1}};
  for (const auto& [type, buttons, pressed, answer] : cases) {
    std::string titles;
    gOnRun = [&](id alert) {
      for (NSUInteger i = 0; i < [[alert buttons] count]; ++i)
        titles += [[[[alert buttons] objectAtIndex:i] title] UTF8String] + std::string(" ");
      EXPECT_TRUE([[alert messageText] isEqual:@"caption"]);
      return NSAlertFirstButtonReturn + pressed;
    };
    EXPECT_EQ(graphics->ShowMessageBox("text", "caption", type), answer);
    EXPECT_EQ(titles, buttons);
  }
}

TEST_F(DialogTest, AFileIsAskedForInItsFolderAndOfItsTypes) {
  const Replaced save([NSSavePanel class], @selector(runModal), RunPanel);
  const Replaced open([NSOpenPanel class], @selector(runModal), RunPanel);
  const Replaced url([NSSavePanel class], @selector(URL), Url);
  const std::string home = ::testing::TempDir() + "tolmara-home";
  std::filesystem::create_directories(home + "/Desktop");
  setenv("HOME", home.c_str(), 1);
  HeapString file("old.fxp"), dir;
  gOnRun = [](id) { return ADD_FAILURE() << "there is no window", 0; };
  graphics->PromptForFile(&file, IGraphics::kFileOpen, &dir, "fxp");
  EXPECT_STREQ(file.Get(), "");
  Open();
  gPath = @"/usr/mine.fxp";
  gOnRun = [&](id panel) {
    EXPECT_TRUE([panel isKindOfClass:[NSOpenPanel class]]);
    EXPECT_TRUE([panel canChooseFiles] && ![panel canChooseDirectories] && [panel resolvesAliases]);
    EXPECT_TRUE([[[panel directoryURL] path] isEqual:CocoaText((home + "/Desktop").c_str())]);
    EXPECT_TRUE(
        ([[panel allowedFileTypes] isEqual:[NSArray arrayWithObjects:@"fxp", @"fxb", nil]]));
    return NSInteger{NSOKButton};
  };
  graphics->PromptForFile(&file, IGraphics::kFileOpen, &dir, " fxp fxb");
  EXPECT_STREQ(file.Get(), "/usr/mine.fxp");
  EXPECT_STREQ(dir.Get(), "/usr/");
  gOnRun = [](id panel) {
    EXPECT_FALSE([panel isKindOfClass:[NSOpenPanel class]] || [panel allowsOtherFileTypes]);
    EXPECT_TRUE([[[panel directoryURL] path] isEqual:@"/usr"]);
    EXPECT_TRUE([panel allowedFileTypes] == nil || [[panel allowedFileTypes] count] == 0);
    return NSInteger{NSCancelButton};
  };
  graphics->PromptForFile(&file, IGraphics::kFileSave, &dir, nullptr);
  EXPECT_STREQ(file.Get(), "");
  EXPECT_STREQ(dir.Get(), "/usr/");
  HeapString desktop;
  graphics->DesktopPath(&desktop);
  EXPECT_EQ(desktop.Get(), home + "/Desktop/");
}

TEST_F(DialogTest, ALinkThatDoesNotOpenSaysSoAfterThePress) {
  const Replaced openUrl([NSWorkspace class], @selector(openURL:), OpenAddress);
  const Replaced run([NSAlert class], @selector(runModal), RunPanel);
  int boxes = 0;
  gOnRun = [&](id alert) {
    EXPECT_TRUE([[alert informativeText] isEqual:@"gone"]);
    return ++boxes, NSAlertFirstButtonReturn;
  };
  Attach<IURLControl>(IRECT(0, 0, 50, 50), "https://a.example/", "/a file", "gone");
  IGraphicsCocoa* const view = Open();
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  EXPECT_EQ(gOpened, (Calls{"https://a.example/", "file:///a%20file"}));
  EXPECT_EQ(boxes, 1);
  // What is no address counts as opened.
  EXPECT_TRUE(graphics->OpenURL("http://no address"));
  EXPECT_TRUE(graphics->OpenURL(nullptr));
  EXPECT_EQ(gOpened.size(), 2U);
}

class BundleGraphics : public IGraphicsMac {
 public:
  using IGraphicsMac::IGraphicsMac;
  using IGraphicsMac::OSLoadBitmap;
};

TEST_F(CocoaTest, PicturesAndPathsAreThoseOfItsBundle) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(::testing::TempDir()) / "tolmara-cocoa";
  const fs::path bundle = folder / "Some.bundle";
  fs::remove_all(folder);
  fs::create_directories(bundle / "Resources");
  fs::copy_file(TOLMARA_SOURCE_DIR "/resources/img/V1_small.png", bundle / "Resources/V1.png");
  std::ofstream(bundle / "Resources/Info-gnustep.plist")
      << "{ NSExecutable = Some; CFBundleIdentifier = \"com.Some One.vst\"; }";
  std::ofstream(bundle / "Some") << "";
  ASSERT_NE([NSBundle bundleWithPath:CocoaText(bundle.c_str())], nil);

  BundleGraphics lost(nullptr, 10, 10, 0), found(nullptr, 10, 10, 0);
  lost.SetBundleID("com.nobody");
  found.SetBundleID("com.Some One.vst");
  HeapString path("x");
  lost.HostPath(&path);
  EXPECT_STREQ(path.Get(), "");
  lost.PluginPath(&path);
  EXPECT_STREQ(path.Get(), "");
  EXPECT_EQ(lost.OSLoadBitmap(1, "img/V1.png"), nullptr);
  found.HostPath(&path);
  EXPECT_EQ(fs::path(path.Get()), bundle / "Some");
  found.PluginPath(&path);
  EXPECT_EQ(path.Get(), folder.string() + "/");
  for (const char* name : {"img/V1.jpg", "V1", "", "img/V2.png"}) {
    EXPECT_EQ(found.OSLoadBitmap(1, name), nullptr) << name;
  }
  EXPECT_EQ(found.OSLoadBitmap(1, nullptr), nullptr);
  const std::unique_ptr<LICE_IBitmap> bitmap(found.OSLoadBitmap(1, "resources/V1.PNG"));
  EXPECT_NE(bitmap, nullptr);
  fs::remove_all(folder);
}

}  // namespace
