// What GNUstep has in place of macOS' own calls, as far as the layer's tests need it.
#import <GNUstepGUI/GSDisplayServer.h>

#include "graphics/mac/CocoaPlatform.h"

namespace {

NSBundle* BundleWith(NSString* identifier) {
  return identifier ? [NSBundle bundleWithIdentifier:identifier] : nil;
}

// From the lower left of the screen to the upper left and back.
NSPoint Flipped(NSPoint point) {
  return NSMakePoint(point.x, NSHeight([[NSScreen mainScreen] frame]) - point.y);
}

}  // namespace

// The common modes do not stand for these three here: a timer in them would never fire.
NSArray* CocoaPlatform::TimerModes() {
  return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode,
                                   NSModalPanelRunLoopMode, nil];
}

// The event has the X server's number of the key.
int CocoaPlatform::KeyCode(NSEvent* event) {
  NSString* const characters = [event characters];
  switch ([characters length] == 1 ? [characters characterAtIndex:0] : 0) {
    case NSLeftArrowFunctionKey: return 123;
    case NSRightArrowFunctionKey: return 124;
    case NSDownArrowFunctionKey: return 125;
    case NSUpArrowFunctionKey: return 126;
    case ' ': return 49;
    default: return -1;
  }
}

NSString* CocoaPlatform::TextInsteadOfRejected(NSString* previous) { return previous; }

NSPoint CocoaPlatform::HideCursor() {
  [NSCursor hide];
  return Flipped([NSEvent mouseLocation]);
}

void CocoaPlatform::ShowCursor(NSPoint point) {
  [GSCurrentServer() setMouseLocation:Flipped(point) onScreen:[[NSScreen mainScreen] screenNumber]];
  [NSCursor unhide];
}

NSInteger CocoaPlatform::RunAlert(NSString* caption, NSString* text, NSArray* buttons) {
  NSAlert* const alert = [[[NSAlert alloc] init] autorelease];
  [alert setMessageText:caption];
  [alert setInformativeText:text];
  for (NSUInteger i = 0; i < [buttons count]; ++i) {
    [alert addButtonWithTitle:[buttons objectAtIndex:i]];
  }
  const NSInteger button = [alert runModal] - NSAlertFirstButtonReturn;
  return button < 0 || button >= (NSInteger)[buttons count] ? -1 : button;
}

NSString* CocoaPlatform::BundleExecutable(NSString* identifier) {
  return [BundleWith(identifier) executablePath];
}

NSString* CocoaPlatform::BundlePath(NSString* identifier) {
  return [BundleWith(identifier) bundlePath];
}

NSString* CocoaPlatform::BundleResource(NSString* identifier, NSString* name, NSString* type) {
  return [BundleWith(identifier) pathForResource:name ofType:type];
}

NSWindow* CocoaPlatform::NewWindowAround(void* windowRef) {
  return [[NSWindow alloc] initWithWindowRef:windowRef];
}
