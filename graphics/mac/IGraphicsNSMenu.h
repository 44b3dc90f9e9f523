// A pop-up menu as Cocoa shows it.
#pragma once

#include "graphics/mac/ClassNames.h"
#include "graphics/mac/CocoaPlatform.h"

class IPopupMenu;

// Keeps the item that was chosen, from any menu whose items lead here.
@interface IGraphicsMenuRcvr : NSObject {
  NSMenuItem* nsMenuItem;  // retained, nil until chosen
}
- (void)OnMenuSelection:(id)sender;
- (NSMenuItem*)MenuItem;
@end

// Shows `menu`, which has to outlive it, and its sub-menus.
@interface IGraphicsNSMenu : NSMenu {
  IPopupMenu* mIPopupMenu;  // not owned
}
- (id)initWithIPopupMenuAndReciever:(IPopupMenu*)menu:(IGraphicsMenuRcvr*)receiver;
- (IPopupMenu*)iPopupMenu;
@end
