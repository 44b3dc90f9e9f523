// The window over that of a host which has no view to give.
#pragma once

#include "graphics/mac/ClassNames.h"
#include "graphics/mac/CocoaPlatform.h"

// Windows without a border refuse the keyboard otherwise.
@interface CustomCocoaWindow : NSWindow
- (BOOL)canBecomeKeyWindow;
@end
