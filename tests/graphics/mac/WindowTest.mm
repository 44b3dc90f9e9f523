// Opening and closing, whoever begins, and windows over those of hosts.
#include "tests/graphics/mac/CocoaHost.h"

namespace {

using WindowTest = CocoaTest;

TEST_F(WindowTest, OpensInAViewAndInNothingElse) {
  EXPECT_EQ(graphics->OpenWindow(nullptr), nullptr);
  EXPECT_EQ(graphics->OpenWindow(@"no view"), nullptr);
  EXPECT_EQ(graphics->OpenWindowFromHandle(nullptr), nullptr);
  IRECT all(0, 0, kWidth, kHeight);
  EXPECT_FALSE(graphics->DrawScreen(&all));
  graphics->CloseWindow();
  graphics->CloseWindowFromHandle();
  EXPECT_FALSE(graphics->WindowIsOpen());
  IGraphicsCocoa* const view = Open();
  EXPECT_TRUE(NSEqualRects([view frame], NSMakeRect(0, 0, kWidth, kHeight)));
  EXPECT_EQ([view superview], host);
  EXPECT_EQ([window firstResponder], view);
  EXPECT_TRUE([window acceptsMouseMovedEvents] && [view isOpaque] && [view acceptsFirstMouse:nil]);
}

TEST_F(WindowTest, ClosesInEveryOrderAndEndsWhatIsOpen) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 50, 50), kLevel);
  const std::function<void()> ways[] = {
      [&] { graphics->CloseWindow(); }, [&] { [View() removeFromSuperview]; },
      [&] { graphics->OpenWindow(nullptr); },
      [&] { OpenField(control, "1", kLevel), graphics->CloseWindow(); }, nullptr};
  for (const auto& close : ways) {
    IGraphicsCocoa* const view = [[Open() retain] autorelease];
    if (!close) control->onPress = ways[0];  // inside the press
    [view mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
    if (close) close();
    EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"}));
    EXPECT_FALSE(graphics->WindowIsOpen());
    EXPECT_EQ([[host subviews] count] + [[view subviews] count], 0U);
    // What the host still sends to the view does nothing.
    [view mouseUp:Mouse(NSLeftMouseUp, 10, 10)];
    [view mouseMoved:Mouse(NSMouseMoved, 10, 10)];
    [view scrollWheel:Mouse(NSScrollWheel, 10, 10, 0, 0, 1)];
    [view drawRect:NSMakeRect(0, 0, 9, 9)];
    [view keyDown:nil];
    EXPECT_FALSE([view isOpaque]);
    EXPECT_EQ(plug.TakeCalls(), Calls{});
  }
}

TEST_F(WindowTest, OutlivesItsParentAndReleasesItsView) {
  NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
  IGraphicsCocoa* const view = [Open() retain];
  [host removeFromSuperview];
  [host release];
  host = nil;
  [inner drain];
  RunFor(0.1);  // with the timer
  EXPECT_TRUE(graphics->WindowIsOpen());
  graphics->CloseWindow();
  RunFor(0.05);
  EXPECT_EQ([view retainCount], 1U);
  [view release];
}

TEST_F(WindowTest, TwoEditorsDoNotDisturbEachOther) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 50, 50), kLevel);
  EditedPlug other;
  auto* const second = new IGraphicsMac(&other, 0, 0, 0);  // without a size
  other.AttachGraphics(second);
  Open();
  auto* const empty = (IGraphicsCocoa*)second->OpenWindow(host);
  [window display];
  [empty mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  EXPECT_EQ(control->TakeLog(), "");
  second->CloseWindow();
  [View() mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  EXPECT_EQ(control->TakeLog(), "down 10 10 L;");
  // Another size takes the controls away, and the field of one of them.
  OpenField(control, "1", kLevel);
  graphics->Resize(150, 80);
  EXPECT_EQ([[View() subviews] count], 0U);
  EXPECT_TRUE(NSEqualSizes([View() frame].size, NSMakeSize(150, 80)));
}

TEST_F(WindowTest, StandsInTheMiddleOfAHostsWindow) {
  NSWindow* const parent = MakeWindow(NSMakeRect(100, 150, 320, 200));
  RunFor(0.1);
  // A reference is a pointer to the server's id of the window here.
  auto reference = (unsigned long)(uintptr_t)[parent windowRef];
  NSWindow* const child =
      [[(IGraphicsCocoa*)graphics->OpenWindowFromHandle(&reference) window] retain];
  EXPECT_TRUE(NSEqualRects([child frame], NSMakeRect(160, 150, kWidth, kHeight)));
  EXPECT_TRUE([child canBecomeKeyWindow] && ![child hasShadow] && [child parentWindow]);
  EXPECT_FALSE([child isVisible]);
  RunFor(0.15);
  EXPECT_TRUE([child isVisible]);
  graphics->CloseWindowFromHandle();
  EXPECT_FALSE(graphics->WindowIsOpen() || [child isVisible]);
  [child release];
  [parent close];
  [parent release];
}

}  // namespace
