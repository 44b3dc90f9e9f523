// Windows, frames and bitmaps of the editor on Cocoa.
#include "graphics/mac/IGraphicsMac.h"

#include <strings.h>

#include <utility>

#include "graphics/lice/LICE.h"
#include "graphics/mac/CocoaText.h"
#include "graphics/mac/CustomCocoaWindow.h"
#include "graphics/mac/IGraphicsCocoa.h"
#include "graphics/windows/FrameArea.h"

namespace {

constexpr NSTimeInterval kOrderFrontDelay = 0.05;  // seconds, until the host has shown its own

class AutoreleasePool {
 public:
  AutoreleasePool() : mPool([[NSAutoreleasePool alloc] init]) {}
  ~AutoreleasePool() { [mPool drain]; }
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  NSAutoreleasePool* mPool;
};

// A picture over the canvas' own memory.
NSBitmapImageRep* NewImageOf(const LICE_IBitmap& bitmap) {
  auto* plane = reinterpret_cast<unsigned char*>(bitmap.getBits());
  return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:&plane
                                                 pixelsWide:bitmap.getWidth()
                                                 pixelsHigh:bitmap.getHeight()
                                              bitsPerSample:8
                                            samplesPerPixel:4
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                               bitmapFormat:NSBitmapFormatAlphaFirst
                                                bytesPerRow:bitmap.getRowSpan() * 4
                                               bitsPerPixel:32];
}

}  // namespace

IGraphicsMac::~IGraphicsMac() {
  IGraphicsMac::CloseWindowFromHandle();
  IGraphicsMac::CloseWindow();
}

void* IGraphicsMac::OpenWindow(void* parentView) {
  const AutoreleasePool pool;
  CloseWindow();
  NSView* const parent = (NSView*)parentView;
  if (![parent isKindOfClass:[NSView class]]) return nullptr;
  mGraphicsCocoa = [[IGraphicsCocoa alloc] initWithIGraphics:this];
  [parent addSubview:mGraphicsCocoa];
  return mGraphicsCocoa;
}

void IGraphicsMac::CloseWindow() {
  IGraphicsCocoa* const view = std::exchange(mGraphicsCocoa, nil);
  if (!view) return;
  const AutoreleasePool pool;
  ShowMouseCursor();
  [view detach];
  [view removeFromSuperview];
  [view release];  // one that is handling an event keeps itself until that is over
}

void* IGraphicsMac::OpenWindowFromHandle(void* windowRef) {
  const AutoreleasePool pool;
  CloseWindowFromHandle();
  if (!windowRef) return nullptr;
  mParentWindow = CocoaPlatform::NewWindowAround(windowRef);
  if (!mParentWindow) return nullptr;
  [mParentWindow setReleasedWhenClosed:NO];
  const NSRect parent = [mParentWindow frame];
  NSRect place = NSMakeRect(NSMinX(parent), NSMinY(parent), Width(), Height());
  if (NSWidth(parent) > Width()) place.origin.x += (NSWidth(parent) - Width()) / 2;
  mChildWindow = [[CustomCocoaWindow alloc] initWithContentRect:place
                                                      styleMask:NSWindowStyleMaskBorderless
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
  [mChildWindow setReleasedWhenClosed:NO];
  [mChildWindow setHasShadow:NO];
  OpenWindow([mChildWindow contentView]);
  [mParentWindow addChildWindow:mChildWindow ordered:NSWindowAbove];
  [mChildWindow performSelector:@selector(orderFront:) withObject:nil afterDelay:kOrderFrontDelay];
  return GetWindow();
}

void IGraphicsMac::CloseWindowFromHandle() {
  if (!mParentWindow) return;
  const AutoreleasePool pool;
  CloseWindow();
  NSWindow* const parent = std::exchange(mParentWindow, nil);
  NSWindow* const child = std::exchange(mChildWindow, nil);
  [NSObject cancelPreviousPerformRequestsWithTarget:child];
  [child orderOut:nil];
  [parent orderOut:nil];
  [child close];
  [parent removeChildWindow:child];
  [parent close];
  [child release];
  [parent release];
}

void IGraphicsMac::Resize(int w, int h) {
  if (w == Width() && h == Height()) return;
  EndUserInput();
  IGraphics::Resize(w, h);
  [mGraphicsCocoa setFrameSize:NSMakeSize(w, h)];
}

void IGraphicsMac::EndUserInput() { [mGraphicsCocoa endUserInput]; }

bool IGraphicsMac::DrawScreen(IRECT* rect) {
  const LICE_IBitmap* const canvas = GetDrawBitmap();
  if (!mGraphicsCocoa || !canvas || !canvas->getBits()) return false;
  if (![NSGraphicsContext currentContext]) return false;
  mDrawn = *rect;
  NSBitmapImageRep* const image = NewImageOf(*canvas);
  const bool drawn = [image drawInRect:NSMakeRect(0, 0, Width(), Height())];
  [image release];
  return drawn;
}

bool IGraphicsMac::DrawIText(IText* text, const char* str, IRECT* rect) {
  return DrawTextOn(GetDrawBitmap(), text, str, rect, false, &mInk);
}

// Text may stand out of the control that changed, and then more is drawn than the window lets
// through. The rest is for the next frame.
void IGraphicsMac::DrawView(const IRECT& rect) {
  IRECT asked = rect.Intersect({0, 0, Width(), Height()});
  if (asked.Empty()) return;
  mDrawn = asked;
  Draw(&asked);
  if (asked.Union(mDrawn) != asked) mUnshown = mUnshown.Union(mDrawn);
}

bool IGraphicsMac::NextFrame(IRECT* area) {
  IRECT dirty;
  *area = IsDirty(&dirty) ? FrameArea(dirty) : IRECT();
  *area = area->Union(std::exchange(mUnshown, IRECT()));
  return !area->Empty();
}

void IGraphicsMac::HideMouseCursor() {
  if (mCursorHidden) return;
  mCursorHidden = true;
  const NSPoint point = CocoaPlatform::HideCursor();
  mHiddenMousePointX = TruncateToPixel(point.x);
  mHiddenMousePointY = TruncateToPixel(point.y);
}

void IGraphicsMac::ShowMouseCursor() {
  if (!mCursorHidden) return;
  mCursorHidden = false;
  CocoaPlatform::ShowCursor(NSMakePoint(mHiddenMousePointX, mHiddenMousePointY));
}

LICE_IBitmap* IGraphicsMac::OSLoadBitmap(int, const char* name) {
  const AutoreleasePool pool;
  NSString* const file = [CocoaText(name) lastPathComponent];
  if ([[file pathExtension] caseInsensitiveCompare:@"png"] != NSOrderedSame) return nullptr;
  NSString* const path = CocoaPlatform::BundleResource(
      CocoaText(mBundleID.Get()), [file stringByDeletingPathExtension], @"png");
  return path ? LICE_LoadPNG([path fileSystemRepresentation]) : nullptr;
}

void IGraphicsMac::HostPath(HeapString* path) {
  const AutoreleasePool pool;
  path->Set([CocoaPlatform::BundleExecutable(CocoaText(mBundleID.Get())) UTF8String]);
}

void IGraphicsMac::PluginPath(HeapString* path) {
  const AutoreleasePool pool;
  NSString* const bundle = CocoaPlatform::BundlePath(CocoaText(mBundleID.Get()));
  path->Set([[bundle stringByDeletingLastPathComponent] UTF8String]);
  if (bundle) path->Append("/");
}
