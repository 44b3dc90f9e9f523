// Building of menus and the choice from them.
#include "graphics/mac/IGraphicsNSMenu.h"

#include "graphics/IPopupMenu.h"
#include "graphics/mac/CocoaText.h"
#include "graphics/windows/MenuEntry.h"

@interface IGraphicsNSMenu (Building)
- (id)initWithMenu:(IPopupMenu*)menu receiver:(IGraphicsMenuRcvr*)receiver depth:(int)depth;
- (NSMenuItem*)addEntry:(const MenuEntry&)entry receiver:(IGraphicsMenuRcvr*)receiver;
@end

@implementation IGraphicsMenuRcvr

- (void)dealloc {
  [nsMenuItem release];
  [super dealloc];
}

- (void)OnMenuSelection:(id)sender {
  [nsMenuItem autorelease];
  nsMenuItem = [sender retain];
}

- (NSMenuItem*)MenuItem {
  return nsMenuItem;
}

@end

@implementation IGraphicsNSMenu

- (id)initWithIPopupMenuAndReciever:(IPopupMenu*)menu:(IGraphicsMenuRcvr*)receiver {
  return [self initWithMenu:menu receiver:receiver depth:0];
}

- (id)initWithMenu:(IPopupMenu*)menu receiver:(IGraphicsMenuRcvr*)receiver depth:(int)depth {
  self = [super initWithTitle:@""];
  if (!self) return nil;
  mIPopupMenu = menu;
  [self setAutoenablesItems:NO];
  for (int i = 0; i < menu->GetNItems(); ++i) {
    const MenuEntry entry = MenuEntryOf(*menu, i);
    NSMenuItem* const item = [self addEntry:entry receiver:receiver];
    if (!entry.submenu || depth >= kDeepestMenu) continue;
    IGraphicsNSMenu* const submenu = [[IGraphicsNSMenu alloc] initWithMenu:entry.submenu
                                                                  receiver:receiver
                                                                     depth:depth + 1];
    [self setSubmenu:submenu forItem:item];
    [submenu release];
  }
  return self;
}

- (NSMenuItem*)addEntry:(const MenuEntry&)entry receiver:(IGraphicsMenuRcvr*)receiver {
  if (entry.separator) {
    [self addItem:[NSMenuItem separatorItem]];
    return nil;
  }
  NSMenuItem* const item =
      [[[NSMenuItem alloc] initWithTitle:CocoaText(entry.text.c_str())
                                  action:entry.submenu ? NULL : @selector(OnMenuSelection:)
                           keyEquivalent:@""] autorelease];
  [item setTarget:receiver];
  [item setIndentationLevel:entry.indented ? 1 : 0];
  [item setState:entry.checked ? NSControlStateValueOn : NSControlStateValueOff];
  [item setEnabled:entry.enabled];
  [self addItem:item];
  return item;
}

- (IPopupMenu*)iPopupMenu {
  return mIPopupMenu;
}

@end
