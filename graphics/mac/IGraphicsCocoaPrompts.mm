// The menus and text fields that the view opens.
#include "graphics/IPopupMenu.h"
#include "graphics/mac/CocoaFormatter.h"
#include "graphics/mac/CocoaText.h"
#include "graphics/mac/IGraphicsCocoa.h"
#include "graphics/mac/IGraphicsMac.h"
#include "graphics/mac/IGraphicsNSMenu.h"

namespace {

constexpr CGFloat kMenuDistance = 4.0;  // between a control and its menu

NSColor* CocoaColor(const IColor& color) {
  return [NSColor colorWithDeviceRed:color.R / 255.0
                               green:color.G / 255.0
                                blue:color.B / 255.0
                               alpha:color.A / 255.0];
}

// May be nil where the system has no fonts.
NSFont* EntryFont(const IText& text) {
  const CGFloat size = EntryTextSize(text);
  NSFont* const font = [NSFont fontWithName:CocoaText(text.mFont) size:size];
  return font ? font : [NSFont userFixedPitchFontOfSize:size];
}

NSTextAlignment EntryAlignment(int align) {
  switch (align) {
    case IText::kAlignNear: return NSTextAlignmentLeft;
    case IText::kAlignFar: return NSTextAlignmentRight;
    default: return NSTextAlignmentCenter;
  }
}

void SetLook(NSTextField* field, const IText& text) {
  // Without a font the field would not centre its text.
  if (NSFont* const font = EntryFont(text)) [field setFont:font];
  [field setAlignment:EntryAlignment(text.mAlign)];
  [field setTextColor:CocoaColor(text.mTextEntryFGColor)];
  [field setBackgroundColor:CocoaColor(text.mTextEntryBGColor)];
  [field setDrawsBackground:YES];
  [field setBordered:NO];
  [field setBezeled:NO];
  [field setFocusRingType:NSFocusRingTypeNone];
  [field setAllowsEditingTextAttributes:NO];
  [[field cell] setLineBreakMode:NSLineBreakByTruncatingTail];
}

}  // namespace

@implementation IGraphicsCocoa (Prompts)

- (IPopupMenu*)createIPopupMenu:(IPopupMenu*)menu:(const IRECT&)rect {
  if (!mGraphics || ![self window] || menu->GetNItems() == 0) return nullptr;
  [[self retain] autorelease];
  IGraphicsMenuRcvr* const receiver = [[[IGraphicsMenuRcvr alloc] init] autorelease];
  IGraphicsNSMenu* const shown =
      [[[IGraphicsNSMenu alloc] initWithIPopupMenuAndReciever:menu:(receiver)] autorelease];
  const NSPoint corner = NSMakePoint(rect.L, mGraphics->Height() - rect.B - kMenuDistance);
  NSEvent* const event = [NSEvent mouseEventWithType:NSEventTypeLeftMouseDown
                                            location:[self convertPoint:corner toView:nil]
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[[self window] windowNumber]
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1.0];
  [self loseRelease];
  [NSMenu popUpContextMenu:shown withEvent:event forView:self];
  NSMenuItem* const item = [receiver MenuItem];
  // The editor may have closed meanwhile.
  if (!item || !mGraphics) return nullptr;
  IPopupMenu* const chosen = [(IGraphicsNSMenu*)[item menu] iPopupMenu];
  chosen->SetChosenItemIdx(static_cast<int>([[item menu] indexOfItem:item]));
  return chosen;
}

// clang-format takes an argument for a part of the name.
// clang-format off
- (void)createTextEntry:(IControl*)control
                       :(IParam*)param
                       :(const IText&)text
                       :(const char*)str
                       :(const IRECT&)rect {
  // clang-format on
  if (!mGraphics || !control || mTextFieldView) return;
  mEdControl = control;
  mEdParam = param;
  mTextFieldView = [[NSTextField alloc]
      initWithFrame:NSMakeRect(rect.L, mGraphics->Height() - rect.B, rect.W(), rect.H())];
  SetLook(mTextFieldView, text);
  [mTextFieldView setStringValue:CocoaText(str)];
  if (param) {
    CocoaFormatter* const formatter =
        [[CocoaFormatter alloc] initWithFilter:FilterFor(*control, param) text:CocoaText(str)];
    [mTextFieldView setFormatter:formatter];
    [formatter release];
  }
  [mTextFieldView setDelegate:(id)self];
  [self addSubview:mTextFieldView];
  [[self window] makeFirstResponder:mTextFieldView];
  [[self window] makeKeyWindow];
}

- (void)controlTextDidEndEditing:(NSNotification*)notification {
  IControl* const control = mEdControl;
  mEdControl = nullptr;  // whatever the text leads to, it is given once
  if (!mGraphics || !control) return;
  [[self retain] autorelease];
  CommitTypedText(*mGraphics, *control, mEdParam, [[mTextFieldView stringValue] UTF8String]);
  [self endUserInput];
  [self setNeedsDisplay:YES];
}

- (void)endUserInput {
  NSTextField* const field = mTextFieldView;
  if (!field) return;
  mTextFieldView = nil;
  mEdControl = nullptr;
  mEdParam = nullptr;
  [field setDelegate:nil];
  [field removeFromSuperview];
  [[self window] makeFirstResponder:self];
  [field autorelease];
}

@end
