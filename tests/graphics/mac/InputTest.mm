// Mouse, wheel, keys and the timer: from an event to the control, the host and the window.
#include "tests/graphics/mac/CocoaHost.h"

namespace {

class InputTest : public CocoaTest {
 protected:
  LogControl* control = Attach<LogControl>(IRECT(0, 0, 100, 100), kLevel);
  IGraphicsCocoa* view = Open();
};

TEST_F(InputTest, EveryEventGoesItsWayWithItsModifiers) {
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, NSShiftKeyMask | NSControlKeyMask)];
  [view mouseDragged:Mouse(NSLeftMouseDragged, 12, 25)];
  [view rightMouseDown:Mouse(NSRightMouseDown, 12, 25)];  // waits for the left one
  [view mouseUp:Mouse(NSLeftMouseUp, 150, -40, NSAlternateKeyMask)];
  EXPECT_EQ(control->TakeLog(), "down 10 20 LSC;up 150 -40 LA;");
  EXPECT_EQ(control->TakeEvents(), Calls{"drag 2 5"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));

  // A click with Command is one of the right button.
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, NSCommandKeyMask)];
  [view mouseUp:Mouse(NSLeftMouseUp, 10, 20)];
  [view rightMouseDown:Mouse(NSRightMouseDown, 11, 20, 0, 2)];
  [view rightMouseDragged:Mouse(NSRightMouseDragged, 12, 20)];
  [view rightMouseUp:Mouse(NSRightMouseUp, 12, 20)];
  EXPECT_EQ(control->TakeLog(), "down 10 20 LR;up 10 20 L;down 11 20 R;up 12 20 R;");
  EXPECT_EQ(control->TakeEvents(), Calls{"drag 1 0"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0", "begin 0", "end 0"}));

  // A double click is no edit.
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, 0, 2)];
  [view mouseUp:Mouse(NSLeftMouseUp, 10, 20, 0, 2)];
  EXPECT_EQ(control->TakeEvents(), Calls{"double 10 20"});
  EXPECT_EQ(plug.TakeCalls(), Calls{});
  control->TakeLog();

  graphics->HandleMouseOver(true);
  [view mouseMoved:Mouse(NSMouseMoved, 30, 40)];
  EXPECT_EQ(control->TakeLog(), "over 30 40 ;");
  [view scrollWheel:Mouse(NSScrollWheel, 30, 40, 0, 0, -2.9)];
  EXPECT_EQ(control->TakeEvents(), Calls{"wheel -2 0"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));

  // A release that was lost shows when the mouse moves.
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20)];
  [view mouseMoved:Mouse(NSMouseMoved, 15, 20)];
  [view mouseUp:Mouse(NSLeftMouseUp, 15, 20)];
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
}

TEST_F(InputTest, KeysGoToTheControlUnderTheMouseAndOthersToTheHost) {
  auto* const keys = Attach<LogControl>(IRECT(0, 0, 100, 100));  // control 0 never sees a key
  [view mouseMoved:Mouse(NSMouseMoved, 30, 40)];
  const auto press = [&](NSString* characters) {
    [view keyDown:[NSEvent keyEventWithType:NSKeyDown
                                         location:NSZeroPoint
                                    modifierFlags:0
                                        timestamp:0
                                     windowNumber:0
                                          context:nil
                                       characters:characters
                      charactersIgnoringModifiers:characters
                                        isARepeat:NO
                                          keyCode:0]];
  };
  const unichar pressed[] = {' ',
                             NSUpArrowFunctionKey,
                             NSDownArrowFunctionKey,
                             NSLeftArrowFunctionKey,
                             NSRightArrowFunctionKey,
                             '0',
                             '9',
                             'a',
                             'Z',
                             '-',
                             0xE9,
                             NSF1FunctionKey};
  for (const unichar& c : pressed) press([NSString stringWithCharacters:&c length:1]);
  EXPECT_EQ(keys->TakeEvents(), (Calls{"key 0 0", "key 1 0", "key 2 0", "key 3 0", "key 4 0",
                                       "key 5 0", "key 14 0", "key 15 0", "key 40 0"}));
  EXPECT_EQ(host->mKeys, 3);
  keys->takesKeys = false;
  for (NSString* characters : {@"", @"ab", @"a"}) press(characters);
  EXPECT_EQ(keys->TakeEvents(), Calls{"key 15 0"});
  EXPECT_EQ(host->mKeys, 6);
}

TEST_F(InputTest, AHiddenCursorComesBackWhereItWas) {
  const NSPoint before = [NSEvent mouseLocation];
  graphics->HideMouseCursor();
  CocoaPlatform::ShowCursor(NSMakePoint(7, 9));  // somebody moves it
  graphics->HideMouseCursor();                   // only the first one counts
  EXPECT_NE([NSEvent mouseLocation].x, before.x);
  graphics->ShowMouseCursor();
  EXPECT_TRUE(NSEqualPoints([NSEvent mouseLocation], before));
}

std::vector<NSRect> gAsked;  // of the view, to be displayed

// GNUstep's runtime replaces an inherited method for every view.
void NoteDisplay(id view, SEL, NSRect rect) {
  if ([view isKindOfClass:[IGraphicsCocoa class]]) gAsked.push_back(rect);
}

TEST_F(InputTest, TheTimerAsksForWhatIsDirtyAlsoInMenusAndDialogs) {
  const Replaced display([NSView class], @selector(setNeedsDisplayInRect:), NoteDisplay);
  [view drawRect:[view bounds]];
  for (NSString* const mode :
       {NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode}) {
    gAsked.clear();
    RunFor(0.1, mode);
    EXPECT_EQ(gAsked.size(), 0U);
    control->SetDirty(false);
    RunFor(0.41, mode);
    EXPECT_GE(gAsked.size(), 5U) << [mode UTF8String];
    EXPECT_LE(gAsked.size(), 12U);  // 25 a second
    EXPECT_TRUE(NSEqualRects(gAsked.at(0), NSMakeRect(0, kHeight - 1 - 100, 101, 101)));
    control->SetClean();
  }
  gAsked.clear();
  control->SetDirty(false);
  [view onTimer:nil];  // somebody else's
  graphics->CloseWindow();
  RunFor(0.1);
  EXPECT_TRUE(gAsked.empty());
}

// Writes beyond its rectangle.
class WideText : public IControl {
 public:
  using IControl::IControl;
  bool Draw(IGraphics* graphics) override {
    IRECT wide(0, mRECT.T, 200, mRECT.B);
    return graphics->DrawIText(&mText, words, &wide);
  }
  const char* words = "";
};

TEST_F(InputTest, TextBeyondItsControlComesWithTheNextFrame) {
  auto* const text = Attach<WideText>(IRECT(80, 40, 90, 60));
  [view drawRect:[view bounds]];
  const Replaced display([NSView class], @selector(setNeedsDisplayInRect:), NoteDisplay);
  gAsked.clear();
  text->words = "wider than its control";
  [view drawRect:NSMakeRect(80.5, 40.5, 9, 19)];  // all pixels that it touches
  RunFor(0.06);
  ASSERT_EQ(gAsked.size(), 1U);
  EXPECT_TRUE(NSMinX(gAsked[0]) < 80.0 && NSMaxX(gAsked[0]) > 90.0);
  // When that is drawn too, nothing is left.
  [view drawRect:gAsked[0]];
  RunFor(0.1);
  EXPECT_EQ(gAsked.size(), 1U);
}

}  // namespace
