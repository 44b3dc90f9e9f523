// The picture of a window, as the server shows it.
#pragma once

#include <xcb/xcb.h>

#include <vector>

#include "graphics/IGraphicsTypes.h"
#include "graphics/x11/server/X11PixelFormat.h"

class LICE_IBitmap;
class X11Connection;

// Keeps the pixels of a whole window in the server's format, so that an exposed area needs no
// conversion. They reach the server through shared memory where it has that, otherwise in requests
// no longer than it takes.
class X11Surface {
 public:
  X11Surface(X11Connection& connection, xcb_window_t window, const X11PixelFormat& format,
             int width, int height, bool shareMemory);
  ~X11Surface();
  X11Surface(const X11Surface&) = delete;
  X11Surface& operator=(const X11Surface&) = delete;

  int Width() const { return mWidth; }
  int Height() const { return mHeight; }
  // Takes the pixels of `rect` from a bitmap whose upper left corner is the window's.
  void Copy(const LICE_IBitmap& bitmap, const IRECT& rect);
  // Sends what it has of `rect` to the window.
  void Show(const IRECT& rect);

 private:
  bool Share(std::size_t bytes);
  void PutShared(const IRECT& rect);
  void PutInRequests(const IRECT& rect);
  IRECT Clipped(const IRECT& rect) const;
  uint8_t* At(int x, int y) const;

  X11Connection& mConnection;
  xcb_window_t mWindow;
  X11PixelFormat mFormat;
  int mWidth, mHeight;
  std::size_t mRowBytes;
  xcb_gcontext_t mGC;
  uint8_t* mPixels = nullptr;  // mRowBytes * mHeight bytes: shared, or those of mOwnPixels
  uint32_t mSegment = 0;       // shared memory at the server, 0 for none
  std::vector<uint8_t> mOwnPixels;
  std::vector<uint8_t> mPacked;  // rows of one request
};
