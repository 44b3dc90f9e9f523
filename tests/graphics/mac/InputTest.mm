// Mouse, wheel and keys, from an event to the control and to the host.
#include "tests/graphics/mac/CocoaHost.h"

namespace {

class InputTest : public CocoaTest {
 protected:
  InputTest() : control(Attach<LogControl>(IRECT(0, 0, 100, 100), kLevel)), view(Open()) {}

  LogControl* control;
  IGraphicsCocoa* view;
};

TEST_F(InputTest, PlacesAreThoseOfTheCanvas) {
  // The host's view begins at (10, 20) of the window; its upper left pixel is left of and above
  // the canvas as the mouse has it.
  NSEvent* const event = [NSEvent mouseEventWithType:NSLeftMouseDown
                                            location:NSMakePoint(10.5, 119.5)
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[window windowNumber]
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1.0];
  int x = 0, y = 0;
  [view getMouseXY:event x:&x y:&y];
  EXPECT_EQ(x, -2);
  EXPECT_EQ(y, -3);
}

TEST_F(InputTest, EveryEventGoesItsWayWithItsModifiers) {
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, NSShiftKeyMask | NSControlKeyMask)];
  [view mouseDragged:Mouse(NSLeftMouseDragged, 12, 25)];
  // A second button waits for the first.
  [view rightMouseDown:Mouse(NSRightMouseDown, 12, 25)];
  [view mouseUp:Mouse(NSLeftMouseUp, 150, -40, NSAlternateKeyMask)];
  EXPECT_EQ(control->TakeLog(), "down 10 20 LSC;up 150 -40 LA;");
  EXPECT_EQ(control->TakeEvents(), Calls{"drag 2 5"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));

  // A click with Command is one of the right button.
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, NSCommandKeyMask)];
  [view mouseUp:Mouse(NSLeftMouseUp, 10, 20)];
  [view rightMouseDown:Mouse(NSRightMouseDown, 11, 20)];
  [view rightMouseDragged:Mouse(NSRightMouseDragged, 12, 20)];
  [view rightMouseUp:Mouse(NSRightMouseUp, 12, 20)];
  EXPECT_EQ(control->TakeLog(), "down 10 20 LR;up 10 20 L;down 11 20 R;up 12 20 R;");
  EXPECT_EQ(control->TakeEvents(), Calls{"drag 1 0"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0", "begin 0", "end 0"}));

  // A double click is no edit; one of the right button is a press.
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20, 0, 2)];
  [view mouseUp:Mouse(NSLeftMouseUp, 10, 20, 0, 2)];
  EXPECT_EQ(control->TakeEvents(), Calls{"double 10 20"});
  EXPECT_EQ(plug.TakeCalls(), Calls{});
  [view rightMouseDown:Mouse(NSRightMouseDown, 10, 20, 0, 2)];
  [view rightMouseUp:Mouse(NSRightMouseUp, 10, 20, 0, 2)];
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
  control->TakeLog();

  graphics->HandleMouseOver(true);
  [view mouseMoved:Mouse(NSMouseMoved, 30, 40)];
  EXPECT_EQ(control->TakeLog(), "over 30 40 ;");
  [view scrollWheel:Wheel(30, 40, -2.9)];
  EXPECT_EQ(control->TakeEvents(), Calls{"wheel -2 0"});
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
}

TEST_F(InputTest, ALostReleaseEndsItsEditWhenTheMouseMoves) {
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 20)];
  [view mouseMoved:Mouse(NSMouseMoved, 15, 20)];
  EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
  [view mouseUp:Mouse(NSLeftMouseUp, 15, 20)];
  EXPECT_EQ(plug.TakeCalls(), Calls{});
}

TEST_F(InputTest, KeysGoToTheControlUnderTheMouseAndOthersToTheHost) {
  Attach<LogControl>(IRECT(0, 0, 100, 100));  // control 0 never sees a key
  auto* const keys = static_cast<LogControl*>(graphics->GetControl(1));
  [view mouseMoved:Mouse(NSMouseMoved, 30, 40)];
  const auto text = [](unichar c) { return [NSString stringWithCharacters:&c length:1]; };
  const struct {
    NSString* characters;
    const char* event;  // null: for the host
  } cases[] = {{@" ", "key 0 0"},
               {text(NSUpArrowFunctionKey), "key 1 0"},
               {text(NSDownArrowFunctionKey), "key 2 0"},
               {text(NSLeftArrowFunctionKey), "key 3 0"},
               {text(NSRightArrowFunctionKey), "key 4 0"},
               {@"0", "key 5 0"},
               {@"9", "key 14 0"},
               {@"a", "key 15 0"},
               {@"Z", "key 40 0"},
               {@"-", nullptr},
               {@"", nullptr},
               {@"ab", nullptr},
               {text(0xE9), nullptr},
               {text(NSF1FunctionKey), nullptr}};
  for (const auto& [characters, event] : cases) {
    [view keyDown:Key(characters)];
    EXPECT_EQ(keys->TakeEvents(), event ? Calls{event} : Calls{}) << [characters UTF8String];
    EXPECT_EQ([host takeKeys], event ? 0 : 1) << [characters UTF8String];
  }
  keys->takesKeys = false;
  [view keyDown:Key(@"a")];
  EXPECT_EQ([host takeKeys], 1);
}

TEST_F(InputTest, AHiddenCursorComesBackWhereItWas) {
  const NSPoint before = [NSEvent mouseLocation];
  graphics->HideMouseCursor();
  CocoaPlatform::ShowCursor(NSMakePoint(7, 9));  // somebody moves it
  graphics->HideMouseCursor();                   // only the first one counts
  EXPECT_NE([NSEvent mouseLocation].x, before.x);
  graphics->ShowMouseCursor();
  EXPECT_EQ([NSEvent mouseLocation].x, before.x);
  EXPECT_EQ([NSEvent mouseLocation].y, before.y);
}

}  // namespace
