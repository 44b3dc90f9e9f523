// The view that shows the editor and takes its input.
#pragma once

#include "graphics/IGraphicsTypes.h"
#include "graphics/mac/ClassNames.h"
#include "graphics/mac/CocoaPlatform.h"

class IControl;
class IGraphicsMac;
class IParam;
class IPopupMenu;
class MouseRouter;

// Made by IGraphicsMac and told to detach when the editor closes; a view that the host keeps
// afterwards is empty and does nothing. A host that takes the view out of its window closes the
// editor by that. All on the main thread.
@interface IGraphicsCocoa : NSView {
  IGraphicsMac* mGraphics;      // not owned; null once the editor has closed
  MouseRouter* mMouse;          // owned
  NSTimer* mTimer;              // owned by the run loop, null when stopped
  NSTextField* mTextFieldView;  // retained, nil when no field is open
  IControl* mEdControl;         // that the field is for
  IParam* mEdParam;             // null when the control takes the text
}
- (id)initWithIGraphics:(IGraphicsMac*)graphics;
- (void)detach;  // ends everything and forgets the editor

- (void)onTimer:(NSTimer*)timer;
- (void)loseRelease;  // that of the mouse goes to a menu or dialog
@end

// What the editor's operations ask for; rectangles are those of the canvas.
@interface IGraphicsCocoa (Prompts)
- (IPopupMenu*)createIPopupMenu:(IPopupMenu*)menu:(const IRECT&)rect;
// clang-format takes an argument for a part of the name.
// clang-format off
- (void)createTextEntry:(IControl*)control
                       :(IParam*)param
                       :(const IText&)text
                       :(const char*)str
                       :(const IRECT&)rect;
// clang-format on
- (void)endUserInput;  // without its text
@end
