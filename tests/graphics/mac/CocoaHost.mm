// The host and its user.
#include "tests/graphics/mac/CocoaHost.h"

Replaced::Replaced(Class owner, SEL selector, void* with, bool ofClass)
    : mOwner(ofClass ? object_getClass((id)owner) : owner),
      mSelector(selector),
      mBefore(class_getMethodImplementation(mOwner, selector)) {
  class_replaceMethod(mOwner, selector, reinterpret_cast<IMP>(with),
                      method_getTypeEncoding(class_getInstanceMethod(mOwner, selector)));
}

Replaced::~Replaced() {
  class_replaceMethod(mOwner, mSelector, mBefore,
                      method_getTypeEncoding(class_getInstanceMethod(mOwner, mSelector)));
}

@implementation HostView

- (void)keyDown:(NSEvent*)event {
  ++mKeys;
}

- (int)takeKeys {
  return std::exchange(mKeys, 0);
}

@end

void LogControl::Log(const char* what, int x, int y, const IMouseMod* mod) {
  log += std::string(what) + " " + std::to_string(x) + " " + std::to_string(y) + " " +
         (mod->L ? "L" : "") + (mod->R ? "R" : "") + (mod->S ? "S" : "") + (mod->C ? "C" : "") +
         (mod->A ? "A" : "") + ";";
}

void LogControl::OnMouseDown(int x, int y, IMouseMod* mod) {
  Log("down", x, y, mod);
  if (onPress) onPress();
}

void RunFor(double seconds, NSString* mode) {
  NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while ([end timeIntervalSinceNow] > 0) {
    [[NSRunLoop currentRunLoop] runMode:mode beforeDate:end];
  }
}

CocoaTest::CocoaTest()
    : pool([[NSAutoreleasePool alloc] init]),
      graphics(new IGraphicsMac(&plug, kWidth, kHeight, 0)),
      window([[NSWindow alloc] initWithContentRect:NSMakeRect(300, 200, 260, 150)
                                         styleMask:NSWindowStyleMaskBorderless
                                           backing:NSBackingStoreBuffered
                                             defer:NO]),
      host([[HostView alloc] initWithFrame:NSMakeRect(kLeft, kBottom, 240, 120)]) {
  [window setReleasedWhenClosed:NO];
  [[window contentView] addSubview:host];
  [window orderFront:nil];
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
  return (IGraphicsCocoa*)view;
}

NSEvent* CocoaTest::Mouse(NSEventType type, int x, int y, NSUInteger flags, int clicks) const {
  return [NSEvent mouseEventWithType:type
                            location:NSMakePoint(kLeft + x + 2, kBottom + kHeight - y - 3)
                       modifierFlags:flags
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:nil
                         eventNumber:0
                          clickCount:clicks
                            pressure:1.0];
}

NSEvent* CocoaTest::Wheel(int x, int y, CGFloat distance) const {
  return [NSEvent mouseEventWithType:NSScrollWheel
                            location:NSMakePoint(kLeft + x + 2, kBottom + kHeight - y - 3)
                       modifierFlags:0
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:nil
                         eventNumber:0
                          clickCount:0
                            pressure:0
                        buttonNumber:0
                              deltaX:0
                              deltaY:distance
                              deltaZ:0];
}

NSEvent* CocoaTest::Key(NSString* characters, unsigned short code) {
  return [NSEvent keyEventWithType:NSKeyDown
                          location:NSZeroPoint
                     modifierFlags:0
                         timestamp:0
                      windowNumber:0
                           context:nil
                        characters:characters
       charactersIgnoringModifiers:characters
                         isARepeat:NO
                           keyCode:code];
}

void CocoaTest::TypeInto(NSString* text) {
  NSText* const editor = [Field() currentEditor];
  ASSERT_NE(editor, nil);
  [editor selectAll:nil];
  for (NSUInteger i = 0; i < [text length]; ++i) {
    [editor insertText:[text substringWithRange:NSMakeRange(i, 1)]];
  }
}

void CocoaTest::EndField() { [[Field() currentEditor] insertNewline:nil]; }

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  const int result = RUN_ALL_TESTS();
  [pool drain];
  return result;
}
