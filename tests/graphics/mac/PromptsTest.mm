// Menus, typed values, dialogs, links and the bundle's files.
#include <cstdlib>
#include <filesystem>

#include "graphics/controls/ILinkControls.h"
#include "graphics/mac/CocoaText.h"
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
  Replaced replaced {
    object_getClass([NSMenu class]), @selector(popUpContextMenu:withEvent:forView:), PopUp
  };
  IPopupMenu menu;

  IPopupMenu* Ask(std::function<void(NSMenu*, NSEvent*)> user) {
    gOnMenu = std::move(user);
    return graphics->CreateIPopupMenu(&menu, &fieldRect);
  }
};

TEST_F(MenuTest, ShowsItsItemsAndAnswersTheChoice) {
  IPopupMenu inner;
  inner.AddItem("deep");
  inner.AddItem("itself", &menu);  // a menu may hold itself
  menu.SetPrefix(2);
  menu.AddItem("title", -1, IPopupMenuItem::kTitle | IPopupMenuItem::kChecked);
  menu.AddSeparator();
  menu.AddItem("off \xE9", -1, IPopupMenuItem::kDisabled);  // no UTF-8
  menu.AddItem("more", &inner);
  EXPECT_EQ(Ask(nullptr), nullptr);  // there is no window
  Open();
  EXPECT_EQ(Ask([&](NSMenu* shown, NSEvent* event) {
              std::string items;
              for (NSInteger i = 0; i < [shown numberOfItems]; ++i) {
                NSMenuItem* const item = [shown itemAtIndex:i];
                items += [item isSeparatorItem] ? "-" : [[item title] UTF8String];
                if ([item indentationLevel] == 1) items += " indented";
                if ([item state] == NSOnState) items += " checked";
                if (![item isEnabled]) items += " disabled";
                items += "\n";
              }
              EXPECT_EQ(
                  items,
                  "01: title indented checked\n- disabled\n03: off \xC3\xA9 disabled\n04: more\n");
              EXPECT_FALSE([shown autoenablesItems]);
              // Four units below the lower left corner, in the window's coordinates.
              EXPECT_EQ([event locationInWindow].x, kLeft + 20);
              EXPECT_EQ([event locationInWindow].y, kBottom + kHeight - 46 - 4);
              EXPECT_EQ([event windowNumber], [window windowNumber]);
              Choose([[shown itemAtIndex:3] submenu], 0);
            }),
            &inner);
  EXPECT_EQ(inner.GetChosenItemIdx(), 0);
  EXPECT_EQ(Ask([](NSMenu*, NSEvent*) {}), nullptr);
  EXPECT_EQ(Ask([&](NSMenu* shown, NSEvent*) { Choose(shown, 0), graphics->CloseWindow(); }),
            nullptr);
}

TEST_F(MenuTest, OpenedByAPressIsOneEditAndTakesTheRelease) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 100, 100), kColour);
  control->DisablePrompt(false);
  control->onPress = [&] { control->PromptUserInput(); };
  gOnMenu = [](NSMenu* shown, NSEvent*) { Choose(shown, 2); };
  [Open() mouseDown:Mouse(NSLeftMouseDown, 10, 20)];
  [View() mouseMoved:Mouse(NSMouseMoved, 11, 20)];
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 2 1.000", "changed 2", "begin 2", "end 2"}));
  EXPECT_EQ(control->TakeLog(), "down 10 20 L;");
}

using TextEntryTest = CocoaTest;

TEST_F(TextEntryTest, TheFieldLooksAsItsStyleSaysAndEndsWithTheWheel) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 100, 100), kLevel);
  style.mAlign = IText::kAlignFar;
  style.mSize = 20;
  Open();
  EXPECT_EQ(OpenField(nullptr, "1"), nil);
  NSTextField* const field = OpenField(control, "0.25", kLevel);
  EXPECT_TRUE(NSEqualRects([field frame], NSMakeRect(20, kHeight - 46, 50, 16)));
  EXPECT_TRUE([[field stringValue] isEqual:@"0.25"]);
  EXPECT_EQ([field alignment], NSRightTextAlignment);
  EXPECT_EQ([[field font] pointSize], 18.0);
  EXPECT_EQ(OpenField(control, "0.5", kLevel), field);  // there is one
  [View() mouseDown:Mouse(NSLeftMouseDown, 5, 5)];
  [View() mouseDragged:Mouse(NSLeftMouseDragged, 9, 9)];  // waits for its end
  [View() mouseUp:Mouse(NSLeftMouseUp, 9, 9)];
  TypeInto(@"1");
  plug.TakeCalls();
  [View() scrollWheel:Mouse(NSScrollWheel, 5, 5, 0, 0, 1)];
  EXPECT_EQ(control->TakeEvents(), Calls{"wheel 1 0"});
  EXPECT_EQ([[View() subviews] count], 0U);
  EXPECT_EQ([window firstResponder], View());
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));  // of the wheel
}

TEST_F(TextEntryTest, ItTakesOnlyWhatItsParameterAllowsAndGivesItOnce) {
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
  Open();
  for (const auto& [param, typed, shown, set] : cases) {
    NSTextField* const field = OpenField(Attach<LogControl>(IRECT(0, 0, 9, 9), param), "8", param);
    TypeInto(typed);
    EXPECT_STREQ([[[field currentEditor] string] UTF8String], shown);
    EndField();
    const std::string idx = std::to_string(param);
    Calls expected{"begin " + idx, "end " + idx};
    if (set) expected.insert(expected.begin() + 1, {set, "changed " + idx});
    EXPECT_EQ(plug.TakeCalls(), expected) << shown;
  }
  // Without a parameter the control gets any text.
  auto* const control = Attach<LogControl>(IRECT(0, 0, 9, 9));
  OpenField(control, nullptr);
  TypeInto(@"any text of any length");
  EndField();
  EXPECT_EQ(control->TakeLog(), "text any text of any length");
  EXPECT_EQ([[View() subviews] count], 0U);
}

std::function<NSInteger(id)> gOnRun;
NSInteger RunPanel(id panel, SEL) { return gOnRun(panel); }
NSURL* PanelUrl(id, SEL) { return [NSURL fileURLWithPath:@"/usr/mine.fxp"]; }
Calls gOpened;
BOOL OpenAddress(id, SEL, NSURL* url) {
  gOpened.push_back([[url absoluteString] UTF8String]);
  return NO;
}

using DialogTest = CocoaTest;

TEST_F(DialogTest, AMessageBoxHasTheButtonsOfItsType) {
  const Replaced run([NSAlert class], @selector(runModal), RunPanel);
  std::string buttons;
  NSInteger pressed = 1;
  gOnRun = [&](id alert) {
    buttons = [[alert messageText] UTF8String];
    for (NSUInteger i = 0; i < [[alert buttons] count]; ++i) {
      buttons += std::string(" ") + [[[[alert buttons] objectAtIndex:i] title] UTF8String];
    }
    return NSAlertFirstButtonReturn + pressed;
  };
  EXPECT_EQ(graphics->ShowMessageBox("text", "caption", 3), 7);
  EXPECT_EQ(buttons, "caption Yes No Cancel");
  EXPECT_EQ(graphics->ShowMessageBox("text", "caption", 4), 7);
  EXPECT_EQ(buttons, "caption Yes No");
  EXPECT_EQ(graphics->ShowMessageBox("text", "caption", 1), 2);
  EXPECT_EQ(buttons, "caption OK Cancel");
  pressed = -9;  // none of them
  EXPECT_EQ(graphics->ShowMessageBox(nullptr, nullptr, 77), 1);
  EXPECT_EQ(buttons, " OK");
}

TEST_F(DialogTest, AFileIsAskedForInItsFolderAndOfItsTypes) {
  const Replaced save([NSSavePanel class], @selector(runModal), RunPanel);
  const Replaced open([NSOpenPanel class], @selector(runModal), RunPanel);
  const Replaced url([NSSavePanel class], @selector(URL), PanelUrl);
  const std::string desktop = ::testing::TempDir() + "Desktop";
  std::filesystem::create_directories(desktop);
  setenv("HOME", std::filesystem::path(desktop).parent_path().c_str(), 1);
  HeapString file("old.fxp"), dir, path;
  gOnRun = nullptr;  // there is no window
  graphics->PromptForFile(&file, IGraphics::kFileOpen, &dir, "fxp");
  EXPECT_STREQ(file.Get(), "");
  Open();
  gOnRun = [&](id panel) {
    EXPECT_TRUE([panel isKindOfClass:[NSOpenPanel class]]);
    EXPECT_TRUE([panel canChooseFiles] && ![panel canChooseDirectories] && [panel resolvesAliases]);
    EXPECT_EQ([[[panel directoryURL] path] UTF8String], desktop);
    EXPECT_TRUE([[[panel allowedFileTypes] componentsJoinedByString:@","] isEqual:@"fxp,fxb"]);
    return NSInteger{NSOKButton};
  };
  graphics->PromptForFile(&file, IGraphics::kFileOpen, &dir, " fxp fxb");
  EXPECT_STREQ(file.Get(), "/usr/mine.fxp");
  gOnRun = [](id panel) {
    EXPECT_FALSE([panel isKindOfClass:[NSOpenPanel class]] || [panel allowsOtherFileTypes]);
    EXPECT_TRUE([[[panel directoryURL] path] isEqual:@"/usr"]);
    EXPECT_EQ([[panel allowedFileTypes] count], 0U);
    return NSInteger{NSCancelButton};
  };
  graphics->PromptForFile(&file, IGraphics::kFileSave, &dir, nullptr);
  EXPECT_STREQ(file.Get(), "");
  EXPECT_STREQ(dir.Get(), "/usr/");
  graphics->DesktopPath(&path);
  EXPECT_EQ(path.Get(), desktop + "/");
}

TEST_F(DialogTest, ALinkThatDoesNotOpenSaysSoAfterThePress) {
  const Replaced openUrl([NSWorkspace class], @selector(openURL:), OpenAddress);
  const Replaced run([NSAlert class], @selector(runModal), RunPanel);
  gOnRun = [&](id alert) {
    gOpened.push_back([[alert informativeText] UTF8String]);
    return NSAlertFirstButtonReturn;
  };
  Attach<IURLControl>(IRECT(0, 0, 50, 50), "https://a.example/", "/a file", "gone");
  [Open() mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  EXPECT_EQ(gOpened, (Calls{"https://a.example/", "file:///a%20file", "gone"}));
  // What is no address counts as opened.
  EXPECT_TRUE(graphics->OpenURL("http://no address") && graphics->OpenURL(nullptr));
  EXPECT_EQ(gOpened.size(), 3U);
}

class BundleGraphics : public IGraphicsMac {
 public:
  using IGraphicsMac::IGraphicsMac;
  using IGraphicsMac::OSLoadBitmap;
};

TEST_F(CocoaTest, PicturesAndPathsAreThoseOfItsBundle) {
  BundleGraphics graphicsOf(nullptr, 10, 10, 0);
  HeapString path("x");
  graphicsOf.SetBundleID("com.nobody");
  graphicsOf.HostPath(&path);
  EXPECT_STREQ(path.Get(), "");
  graphicsOf.PluginPath(&path);
  EXPECT_STREQ(path.Get(), "");
  EXPECT_EQ(graphicsOf.OSLoadBitmap(1, "img/V1_small.png"), nullptr);
  ASSERT_NE([NSBundle bundleWithPath:@TOLMARA_BINARY_DIR "/Tolmara.bundle"], nil);
  graphicsOf.SetBundleID("com.Halden Merrow.vst.Tolmara");
  graphicsOf.HostPath(&path);
  EXPECT_STREQ(path.Get(), TOLMARA_BINARY_DIR "/Tolmara.bundle/Tolmara");
  graphicsOf.PluginPath(&path);
  EXPECT_STREQ(path.Get(), TOLMARA_BINARY_DIR "/");
  for (const char* name : {"img/V1_small.jpg", "V1_small", "", "img/V9_small.png"}) {
    EXPECT_EQ(graphicsOf.OSLoadBitmap(1, name), nullptr) << name;
  }
  EXPECT_EQ(graphicsOf.OSLoadBitmap(1, nullptr), nullptr);
  const std::unique_ptr<LICE_IBitmap> bitmap(graphicsOf.OSLoadBitmap(1, "else/V1_small.PNG"));
  EXPECT_NE(bitmap, nullptr);
}

}  // namespace
