// The host and its user.
#include "tests/graphics/mac/CocoaHost.h"

@implementation HostView

- (void)keyDown:(NSEvent*)event {
  ++mKeys;
}

@end

NSWindow* CocoaTest::MakeWindow(NSRect place) {
  NSWindow* const window = [[NSWindow alloc] initWithContentRect:place
                                                       styleMask:NSWindowStyleMaskBorderless
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
  [window setReleasedWhenClosed:NO];
  [window orderFront:nil];
  return window;
}

CocoaTest::CocoaTest() {
  [[window contentView] addSubview:host];
  plug.AttachGraphics(graphics);
}

CocoaTest::~CocoaTest() {
  graphics->CloseWindow();
  [window close];
  [host release];
  [window release];
  [pool drain];
}

IGraphicsCocoa* CocoaTest::Open() {
  void* const view = graphics->OpenWindow(host);
  EXPECT_EQ(view, graphics->GetWindow());
  [window display];
  plug.TakeCalls();
  return View();
}

NSTextField* CocoaTest::OpenField(IControl* control, const char* str, int param) {
  graphics->CreateTextEntry(control, &style, &fieldRect, str, plug.GetParam(param));
  return [[View() subviews] lastObject];
}

void CocoaTest::TypeInto(NSString* text) {
  NSText* const editor = [[[View() subviews] lastObject] currentEditor];
  [editor selectAll:nil];
  for (NSUInteger i = 0; i < [text length]; ++i) {
    [editor insertText:[text substringWithRange:NSMakeRange(i, 1)]];
  }
}

void CocoaTest::RunFor(double seconds, NSString* mode) {
  NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while ([end timeIntervalSinceNow] > 0) {
    [[NSRunLoop currentRunLoop] runMode:mode beforeDate:end];
  }
}

// In the middle of the pixel.
NSEvent* CocoaTest::Mouse(NSEventType type, int x, int y, NSUInteger flags, int clicks,
                          CGFloat deltaY) const {
  return [NSEvent mouseEventWithType:type
                            location:NSMakePoint(kLeft + x + 2.5, kBottom + kHeight - y - 3.5)
                       modifierFlags:flags
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:nil
                         eventNumber:0
                          clickCount:clicks
                            pressure:1.0
                        buttonNumber:0
                              deltaX:0
                              deltaY:deltaY
                              deltaZ:0];
}
