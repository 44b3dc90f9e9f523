// The borderless window's one rule.
#include "graphics/mac/CustomCocoaWindow.h"

@implementation CustomCocoaWindow

- (BOOL)canBecomeKeyWindow {
  return YES;
}

@end
