// The view's life, its frames and its mouse and keys.
#include "graphics/mac/IGraphicsCocoa.h"

#include <cmath>

#include "graphics/mac/IGraphicsMac.h"
#include "graphics/windows/EditorKeys.h"
#include "graphics/windows/MouseRouter.h"

namespace {

// The view counts upwards from its lower edge.
NSRect ViewRect(const IRECT& rect, int height) {
  return NSMakeRect(rect.L, height - rect.B, rect.W(), rect.H());
}

// All pixels that the rectangle touches.
IRECT CanvasRect(const NSRect& rect, int height) {
  return {
      TruncateToPixel(std::floor(NSMinX(rect))), TruncateToPixel(std::floor(height - NSMaxY(rect))),
      TruncateToPixel(std::ceil(NSMaxX(rect))), TruncateToPixel(std::ceil(height - NSMinY(rect)))};
}

int KeyOf(NSEvent* event) {
  NSString* const characters = [event characters];
  if ([characters length] != 1) return -1;
  switch (CocoaPlatform::KeyCode(event)) {
    case 123: return IGraphics::kKeyLeft;
    case 124: return IGraphics::kKeyRight;
    case 125: return IGraphics::kKeyDown;
    case 126: return IGraphics::kKeyUp;
    case 49: return IGraphics::kKeySpace;
    default: return EditorKeyOf(char32_t{[characters characterAtIndex:0]});
  }
}

}  // namespace

@interface IGraphicsCocoa (Input)
- (void)getMouseXY:(NSEvent*)event x:(int*)x y:(int*)y;
- (MouseInput)inputOf:(NSEvent*)event holding:(EMouseButton)button;
- (void)press:(EMouseButton)button by:(NSEvent*)event clicks:(NSInteger)clicks;
- (void)release:(EMouseButton)button by:(NSEvent*)event;
- (void)drag:(EMouseButton)button by:(NSEvent*)event;
@end

@implementation IGraphicsCocoa

- (id)initWithIGraphics:(IGraphicsMac*)graphics {
  self = [super initWithFrame:NSMakeRect(0, 0, graphics->Width(), graphics->Height())];
  if (!self) return nil;
  mGraphics = graphics;
  mMouse = new MouseRouter(*graphics);
  // The run loop keeps the timer, and that keeps the view, until detach.
  mTimer = [NSTimer timerWithTimeInterval:1.0 / graphics->FPS()
                                   target:self
                                 selector:@selector(onTimer:)
                                 userInfo:nil
                                  repeats:YES];
  NSArray* const modes = CocoaPlatform::TimerModes();
  for (NSUInteger i = 0; i < [modes count]; ++i) {
    [[NSRunLoop currentRunLoop] addTimer:mTimer forMode:[modes objectAtIndex:i]];
  }
  return self;
}

- (void)dealloc {
  delete mMouse;
  [super dealloc];
}

- (void)detach {
  [self endUserInput];
  if (mGraphics) mMouse->Cancel();
  [mTimer invalidate];
  mTimer = nil;
  mGraphics = nullptr;
}

- (void)removeFromSuperview {
  // GNUstep also sends this to a view that is just being added, which has no superview yet.
  if (mGraphics && [self superview]) {
    [[self retain] autorelease];
    IGraphicsMac* const graphics = mGraphics;
    [self detach];
    graphics->CloseWindow();
  }
  [super removeFromSuperview];
}

- (void)viewDidMoveToWindow {
  [[self window] makeFirstResponder:self];
  [[self window] setAcceptsMouseMovedEvents:YES];
}

- (BOOL)isOpaque {
  return mGraphics ? YES : NO;
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

- (void)onTimer:(NSTimer*)timer {
  if (timer != mTimer || !mGraphics) return;
  IRECT area;
  if (mGraphics->NextFrame(&area)) {
    [self setNeedsDisplayInRect:ViewRect(area, mGraphics->Height())];
  }
}

- (void)drawRect:(NSRect)rect {
  if (mGraphics) mGraphics->DrawView(CanvasRect(rect, mGraphics->Height()));
}

// The place of a mouse event, as controls get it.
- (void)getMouseXY:(NSEvent*)event x:(int*)x y:(int*)y {
  const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  const MouseInput input =
      MouseInput::At(TruncateToPixel(std::floor(point.x)),
                     TruncateToPixel(std::floor(mGraphics->Height() - point.y)));
  *x = input.x;
  *y = input.y;
}

- (MouseInput)inputOf:(NSEvent*)event holding:(EMouseButton)button {
  MouseInput input;
  [self getMouseXY:event x:&input.x y:&input.y];
  input.left = button == kLeftButton;
  input.right = button == kRightButton;
  const NSUInteger flags = [event modifierFlags];
  input.shift = (flags & NSEventModifierFlagShift) != 0;
  input.control = (flags & NSEventModifierFlagControl) != 0;
  input.alt = (flags & NSEventModifierFlagOption) != 0;
  input.command = (flags & NSEventModifierFlagCommand) != 0;
  return input;
}

// Whether a press finds the other button down is not known, so it waits for that one. A release
// that was lost shows when the mouse moves.
- (void)press:(EMouseButton)button by:(NSEvent*)event clicks:(NSInteger)clicks {
  if (!mGraphics) return;
  [[self retain] autorelease];  // a control may close the editor
  MouseInput input = [self inputOf:event holding:button];
  input.left = input.right = true;
  mMouse->Press(button, static_cast<int>(clicks), input);
  if (mGraphics) mGraphics->ShowFailure();
}

- (void)release:(EMouseButton)button by:(NSEvent*)event {
  if (!mGraphics) return;
  [[self retain] autorelease];
  mMouse->Release(button, [self inputOf:event holding:kNoButton]);
}

- (void)drag:(EMouseButton)button by:(NSEvent*)event {
  if (!mGraphics) return;
  [[self retain] autorelease];
  mMouse->Motion([self inputOf:event holding:button], mTextFieldView == nil);
}

- (void)mouseDown:(NSEvent*)event {
  [self press:kLeftButton by:event clicks:[event clickCount]];
}

- (void)mouseUp:(NSEvent*)event {
  [self release:kLeftButton by:event];
}

- (void)mouseDragged:(NSEvent*)event {
  [self drag:kLeftButton by:event];
}

- (void)rightMouseDown:(NSEvent*)event {
  [self press:kRightButton by:event clicks:1];
}

- (void)rightMouseUp:(NSEvent*)event {
  [self release:kRightButton by:event];
}

- (void)rightMouseDragged:(NSEvent*)event {
  [self drag:kRightButton by:event];
}

- (void)mouseMoved:(NSEvent*)event {
  [self drag:kNoButton by:event];
}

- (void)scrollWheel:(NSEvent*)event {
  if (!mGraphics) return;
  [[self retain] autorelease];
  [self endUserInput];
  mMouse->Wheel(TruncateToPixel([event deltaY]), [self inputOf:event holding:kNoButton]);
}

- (void)keyDown:(NSEvent*)event {
  [[self retain] autorelease];
  const int key = mGraphics ? KeyOf(event) : -1;
  const bool taken = key >= 0 && mGraphics->OnKeyDown(mMouse->X(), mMouse->Y(), key);
  if (!taken) [[self nextResponder] keyDown:event];
}

- (void)loseRelease {
  mMouse->Swallow();
}

@end
