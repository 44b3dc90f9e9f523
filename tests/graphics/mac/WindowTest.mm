// Opening and closing, whoever begins, and windows over those of hosts.
#include "tests/graphics/mac/CocoaHost.h"

namespace {

using WindowTest = CocoaTest;

TEST_F(WindowTest, OpensInAViewAndInNothingElse) {
  EXPECT_EQ(graphics->OpenWindow(nullptr), nullptr);
  EXPECT_EQ(graphics->OpenWindow(@"no view"), nullptr);
  EXPECT_EQ(graphics->OpenWindowFromHandle(nullptr), nullptr);
  EXPECT_FALSE(graphics->WindowIsOpen());
  IRECT all(0, 0, kWidth, kHeight);
  EXPECT_FALSE(graphics->DrawScreen(&all));
  graphics->CloseWindow();
  graphics->CloseWindowFromHandle();

  IGraphicsCocoa* const view = Open();
  ASSERT_NE(view, nil);
  EXPECT_TRUE(NSEqualRects([view frame], NSMakeRect(0, 0, kWidth, kHeight)));
  EXPECT_EQ([view superview], host);
  EXPECT_EQ([window firstResponder], view);
  EXPECT_TRUE([window acceptsMouseMovedEvents]);
  EXPECT_TRUE([view isOpaque] && [view acceptsFirstMouse:nil]);
}

TEST_F(WindowTest, ClosesInEveryOrderAndEndsWhatIsOpen) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 50, 50), kLevel);
  const struct {
    const char* by;
    std::function<void()> close;
  } ways[] = {{"host", [&] { graphics->CloseWindow(); }},
              {"view", [&] { [View() removeFromSuperview]; }},
              {"next window", [&] { graphics->OpenWindow(nullptr); }},
              {"inside a press", [&] { control->onPress = [&] { graphics->CloseWindow(); }; }},
              {"text field", [&] {
                 IText text;
                 IRECT rect(0, 0, 30, 16);
                 graphics->CreateTextEntry(control, &text, &rect, "1", plug.GetParam(kLevel));
                 graphics->CloseWindow();
               }}};
  for (const auto& [by, close] : ways) {
    IGraphicsCocoa* const view = [[Open() retain] autorelease];
    control->onPress = nullptr;
    const bool inPress = std::string(by) == "inside a press";
    if (inPress) close();
    [view mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
    if (!inPress) close();
    EXPECT_EQ(plug.TakeCalls(), (Calls{"begin 0", "end 0"})) << by;
    EXPECT_FALSE(graphics->WindowIsOpen()) << by;
    EXPECT_EQ([[host subviews] count], 0U) << by;
    EXPECT_EQ([[view subviews] count], 0U) << by;
    // What the host still sends to the view does nothing.
    [view mouseUp:Mouse(NSLeftMouseUp, 10, 10)];
    [view mouseMoved:Mouse(NSMouseMoved, 10, 10)];
    [view scrollWheel:Wheel(10, 10, 1)];
    [view drawRect:NSMakeRect(0, 0, 9, 9)];
    [view keyDown:Key(@"a")];
    [view onTimer:nil];
    EXPECT_FALSE([view isOpaque]);
    EXPECT_EQ(plug.TakeCalls(), Calls{}) << by;
    [host takeKeys];
  }
}

TEST_F(WindowTest, OutlivesItsParentAndReleasesItsView) {
  IGraphicsCocoa* view;
  {
    NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
    view = Open();
    [host removeFromSuperview];
    [host release];
    host = nil;
    [inner drain];
  }
  // The editor keeps the view, and its timer runs.
  EXPECT_TRUE(graphics->WindowIsOpen());
  RunFor(0.1);
  [view retain];
  graphics->CloseWindow();
  RunFor(0.05);
  EXPECT_EQ([view retainCount], 1U);
  [view release];
}

TEST_F(WindowTest, TwoEditorsDoNotDisturbEachOther) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 50, 50), kLevel);
  TestPlug other;
  auto* const second = new IGraphicsMac(&other, 0, 0, 0);  // and one without a size
  other.AttachGraphics(second);
  IGraphicsCocoa* const view = Open();
  ASSERT_NE(second->OpenWindow(host), nullptr);
  [window display];
  IRECT none(0, 0, 0, 0);
  EXPECT_FALSE(second->DrawScreen(&none));
  [(IGraphicsCocoa*)second->GetWindow() mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  second->CloseWindow();
  EXPECT_EQ(control->TakeLog(), "");
  [view mouseDown:Mouse(NSLeftMouseDown, 10, 10)];
  EXPECT_EQ(control->TakeLog(), "down 10 10 L;");
}

TEST_F(WindowTest, ResizesItsViewWithoutTheFieldOfAControlThatIsGone) {
  auto* const control = Attach<LogControl>(IRECT(0, 0, 50, 50), kLevel);
  IGraphicsCocoa* const view = Open();
  IText text;
  IRECT rect(0, 0, 30, 16);
  graphics->CreateTextEntry(control, &text, &rect, "1", plug.GetParam(kLevel));
  graphics->Resize(kWidth, kHeight);
  EXPECT_EQ(graphics->NControls(), 1);
  graphics->Resize(150, 80);
  EXPECT_EQ(graphics->NControls(), 0);
  EXPECT_EQ([[view subviews] count], 0U);
  EXPECT_TRUE(NSEqualSizes([view frame].size, NSMakeSize(150, 80)));
}

TEST_F(WindowTest, StandsInTheMiddleOfAHostsWindow) {
  NSWindow* const parent = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 150, 320, 200)
                                                       styleMask:NSWindowStyleMaskBorderless
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
  [parent setReleasedWhenClosed:NO];
  [parent orderFront:nil];
  RunFor(0.1);
  // A reference is a pointer to the server's id of the window here.
  auto reference = (unsigned long)(uintptr_t)[parent windowRef];
  auto* const view = (IGraphicsCocoa*)graphics->OpenWindowFromHandle(&reference);
  ASSERT_NE(view, nil);
  NSWindow* const child = [view window];
  EXPECT_TRUE(NSEqualRects([child frame], NSMakeRect(160, 150, kWidth, kHeight)))
      << [NSStringFromRect([child frame]) UTF8String];
  EXPECT_TRUE([child canBecomeKeyWindow]);
  EXPECT_FALSE([child hasShadow]);
  EXPECT_EQ([[child parentWindow] isKindOfClass:[NSWindow class]], YES);
  EXPECT_FALSE([child isVisible]);
  RunFor(0.15);
  EXPECT_TRUE([child isVisible]);
  [child retain];
  graphics->CloseWindowFromHandle();
  EXPECT_FALSE(graphics->WindowIsOpen());
  EXPECT_FALSE([child isVisible]);
  [child release];
  [parent close];
  [parent release];
}

}  // namespace
