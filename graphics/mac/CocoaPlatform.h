// What macOS and GNUstep do not share. Each has a source of its own for the functions; this header
// alone asks which of them it is.
#pragma once

#ifdef GNUSTEP
#import <AppKit/AppKit.h>

constexpr NSUInteger NSEventModifierFlagShift = NSShiftKeyMask;
constexpr NSUInteger NSEventModifierFlagControl = NSControlKeyMask;
constexpr NSUInteger NSEventModifierFlagOption = NSAlternateKeyMask;
constexpr NSUInteger NSEventModifierFlagCommand = NSCommandKeyMask;
constexpr NSEventType NSEventTypeLeftMouseDown = NSLeftMouseDown;
constexpr NSBitmapFormat NSBitmapFormatAlphaFirst = NSAlphaFirstBitmapFormat;
#else
#import <Cocoa/Cocoa.h>
#endif

// The main thread only. Objects returned are autoreleased unless a function says otherwise.
namespace CocoaPlatform {

// Run loop modes in which a timer fires at any time, also while a menu or dialog is open.
NSArray* TimerModes();

// The key's number on a Mac keyboard, for arrows and space at least.
int KeyCode(NSEvent* event);

// What a formatter answers in place of a rejected text; nil where the field keeps the old one by
// itself.
NSString* TextInsteadOfRejected(NSString* previous);

// Both in display coordinates, whose origin is at the upper left. Show moves the cursor first.
NSPoint HideCursor();
void ShowCursor(NSPoint point);

// Waits for the answer: the index of the button, -1 when there was none. One to three buttons.
NSInteger RunAlert(NSString* caption, NSString* text, NSArray* buttons);

// Of the loaded bundle with an identifier; nil without one.
NSString* BundleExecutable(NSString* identifier);
NSString* BundlePath(NSString* identifier);
NSString* BundleResource(NSString* identifier, NSString* name, NSString* type);

// A window around the one that a host refers to, which the caller has to release; nil if it cannot
// be had.
NSWindow* NewWindowAround(void* windowRef);

}  // namespace CocoaPlatform
