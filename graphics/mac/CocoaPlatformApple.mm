// What only macOS has: CoreGraphics for the cursor, CoreFoundation for alerts and bundles.
#include "graphics/mac/CocoaPlatform.h"

namespace {

CFBundleRef BundleWith(NSString* identifier) {
  return identifier ? CFBundleGetBundleWithIdentifier((CFStringRef)identifier) : nullptr;
}

// Takes the URL over.
NSString* PathOf(CFURLRef url) { return [[(NSURL*)url autorelease] path]; }

}  // namespace

NSArray* CocoaPlatform::TimerModes() { return [NSArray arrayWithObject:NSRunLoopCommonModes]; }

int CocoaPlatform::KeyCode(NSEvent* event) { return [event keyCode]; }

NSString* CocoaPlatform::TextInsteadOfRejected(NSString*) { return nil; }

NSPoint CocoaPlatform::HideCursor() {
  CGPoint point = CGPointZero;
  if (CGEventRef event = CGEventCreate(nullptr)) {
    point = CGEventGetLocation(event);
    CFRelease(event);
  }
  CGDisplayHideCursor(CGMainDisplayID());
  return NSMakePoint(point.x, point.y);
}

void CocoaPlatform::ShowCursor(NSPoint point) {
  CGDisplayMoveCursorToPoint(CGMainDisplayID(), CGPointMake(point.x, point.y));
  CGDisplayShowCursor(CGMainDisplayID());
}

NSInteger CocoaPlatform::RunAlert(NSString* caption, NSString* text, NSArray* buttons) {
  const auto title = [buttons](NSUInteger i) {
    return i < [buttons count] ? (CFStringRef)[buttons objectAtIndex:i] : nullptr;
  };
  CFOptionFlags response = 0;
  const SInt32 error = CFUserNotificationDisplayAlert(
      0, kCFUserNotificationNoteAlertLevel, nullptr, nullptr, nullptr, (CFStringRef)caption,
      (CFStringRef)text, title(0), title(1), title(2), &response);
  // The lowest two bits count the buttons: default, alternate, other; 3 for none of them.
  const NSInteger button = (NSInteger)(response & 3);
  return error || button >= (NSInteger)[buttons count] ? -1 : button;
}

NSString* CocoaPlatform::BundleExecutable(NSString* identifier) {
  CFBundleRef bundle = BundleWith(identifier);
  return bundle ? PathOf(CFBundleCopyExecutableURL(bundle)) : nil;
}

NSString* CocoaPlatform::BundlePath(NSString* identifier) {
  CFBundleRef bundle = BundleWith(identifier);
  return bundle ? PathOf(CFBundleCopyBundleURL(bundle)) : nil;
}

NSString* CocoaPlatform::BundleResource(NSString* identifier, NSString* name, NSString* type) {
  CFBundleRef bundle = BundleWith(identifier);
  if (!bundle || !name) return nil;
  return PathOf(CFBundleCopyResourceURL(bundle, (CFStringRef)name, (CFStringRef)type, nullptr));
}

NSWindow* CocoaPlatform::NewWindowAround(void* windowRef) {
  // Deprecated, and the only way from such a reference to a window.
  if (![NSWindow instancesRespondToSelector:@selector(initWithWindowRef:)]) return nil;
  return [[NSWindow alloc] initWithWindowRef:windowRef];
}
