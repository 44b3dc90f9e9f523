// Windows of the editor: a plain one, and a small one with a picture of its own.
#pragma once

#include <xcb/xcb.h>

#include <memory>

#include "graphics/IGraphicsTypes.h"
#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/x11/server/X11PixelFormat.h"
#include "graphics/x11/server/X11Surface.h"

class X11Connection;

// What all windows of one editor share: the visual of the window that the host gave.
struct X11Look {
  xcb_visualid_t visual;
  xcb_colormap_t colormap;
  X11PixelFormat format;
};

// A window without background, mapped by its creator. With a destroyed parent, creation fails
// silently, and what is asked of the window has no effect.
class X11Window {
 public:
  enum EKind { kChild, kOverAll };  // the latter is a child of the root that no manager handles

  X11Window(X11Connection& connection, const X11Look& look, xcb_window_t parent, const IRECT& place,
            EKind kind, uint32_t eventMask);
  ~X11Window();
  X11Window(const X11Window&) = delete;
  X11Window& operator=(const X11Window&) = delete;

  xcb_window_t Id() const { return mId; }
  bool Exists() const { return mExists; }
  void Forget() { mExists = false; }  // the server has destroyed it
  void Map();
  void Resize(int width, int height);

 private:
  X11Connection& mConnection;
  xcb_window_t mId;
  bool mExists = true;
};

// A menu or text field: a mapped window with its bitmap.
class X11Pane {
 public:
  // `place` is relative to `parent`; `owner` is the window that one over all belongs to.
  X11Pane(X11Connection& connection, const X11Look& look, xcb_window_t parent, const IRECT& place,
          X11Window::EKind kind, xcb_window_t owner = XCB_NONE);

  LICE_MemBitmap& Bitmap() { return mBitmap; }
  const IRECT& Place() const { return mPlace; }
  bool Is(xcb_window_t window) const { return window == mWindow.Id(); }
  void Show();  // the whole bitmap, after it was drawn on
  void Expose(const IRECT& rect) { mSurface.Show(rect); }

 private:
  IRECT mPlace;
  X11Window mWindow;
  X11Surface mSurface;
  LICE_MemBitmap mBitmap;
};
