// Memory for a window's picture and its way to the server.
#include "graphics/x11/server/X11Surface.h"

#include <sys/mman.h>
#include <xcb/shm.h>

#include <cstring>

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/x11/server/FileDescriptor.h"
#include "graphics/x11/server/X11Connection.h"

X11Surface::X11Surface(X11Connection& connection, xcb_window_t window, const X11PixelFormat& format,
                       int width, int height, bool shareMemory)
    : mConnection(connection),
      mWindow(window),
      mFormat(format),
      mWidth(width),
      mHeight(height),
      mRowBytes(format.RowBytes(width)),
      mGC(xcb_generate_id(connection.Get())) {
  // No events for areas that could not be copied: nothing is copied.
  const uint32_t exposures = 0;
  xcb_create_gc(connection.Get(), mGC, window, XCB_GC_GRAPHICS_EXPOSURES, &exposures);
  const std::size_t bytes = mRowBytes * static_cast<std::size_t>(height);
  if (shareMemory && connection.SharesMemory() && Share(bytes)) return;
  mOwnPixels.resize(bytes);
  mPixels = mOwnPixels.data();
}

X11Surface::~X11Surface() {
  if (mSegment) {
    xcb_shm_detach(mConnection.Get(), mSegment);
    munmap(mPixels, mRowBytes * static_cast<std::size_t>(mHeight));
  }
  xcb_free_gc(mConnection.Get(), mGC);
}

bool X11Surface::Share(std::size_t bytes) {
  FileDescriptor file(memfd_create("tolmara-editor", MFD_CLOEXEC));
  if (!file.IsOpen() || ftruncate(file.Get(), static_cast<off_t>(bytes)) != 0) return false;
  void* pixels = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
  if (pixels == MAP_FAILED) return false;
  xcb_connection_t* c = mConnection.Get();
  const xcb_shm_seg_t segment = xcb_generate_id(c);
  // The request takes the descriptor over. A server elsewhere refuses it.
  const auto cookie = xcb_shm_attach_fd_checked(c, segment, file.Release(), true);
  if (const X11Reply<xcb_generic_error_t> error{xcb_request_check(c, cookie)}) {
    munmap(pixels, bytes);
    return false;
  }
  mSegment = segment;
  mPixels = static_cast<uint8_t*>(pixels);
  return true;
}

uint8_t* X11Surface::At(int x, int y) const {
  return mPixels + static_cast<std::size_t>(y) * mRowBytes +
         static_cast<std::size_t>(x) * mFormat.PixelBytes();
}

IRECT X11Surface::Clipped(const IRECT& rect) const {
  return rect.Intersect({0, 0, mWidth, mHeight});
}

void X11Surface::Copy(const LICE_IBitmap& bitmap, const IRECT& rect) {
  const IRECT r = Clipped(rect).Intersect({0, 0, bitmap.getWidth(), bitmap.getHeight()});
  for (int y = r.T; y < r.B; ++y) {
    const LICE_pixel* row = bitmap.getBits() + ptrdiff_t{y} * bitmap.getRowSpan();
    mFormat.Convert(row + r.L, r.W(), At(r.L, y));
  }
}

void X11Surface::Show(const IRECT& rect) {
  const IRECT r = Clipped(rect);
  if (r.Empty()) return;
  if (mSegment) {
    PutShared(r);
  } else {
    PutInRequests(r);
  }
}

void X11Surface::PutShared(const IRECT& r) {
  xcb_shm_put_image(mConnection.Get(), mWindow, mGC, X11Int<uint16_t>(mWidth),
                    X11Int<uint16_t>(mHeight), X11Int<uint16_t>(r.L), X11Int<uint16_t>(r.T),
                    X11Int<uint16_t>(r.W()), X11Int<uint16_t>(r.H()), X11Int<int16_t>(r.L),
                    X11Int<int16_t>(r.T), static_cast<uint8_t>(mFormat.Depth()),
                    XCB_IMAGE_FORMAT_Z_PIXMAP, 0, mSegment, 0);
}

void X11Surface::PutInRequests(const IRECT& r) {
  xcb_connection_t* c = mConnection.Get();
  const std::size_t rowBytes = mFormat.RowBytes(r.W());
  const std::size_t limit = std::size_t{xcb_get_maximum_request_length(c)} * 4;
  constexpr std::size_t kHeader = sizeof(xcb_put_image_request_t) + 4;  // with an extended length
  if (limit < kHeader + rowBytes) return;                               // no connection any more
  const int rows = static_cast<int>(std::min<std::size_t>((limit - kHeader) / rowBytes, 1 << 14));
  for (int y = r.T; y < r.B; y += rows) {
    const int n = std::min(rows, r.B - y);
    mPacked.assign(rowBytes * static_cast<std::size_t>(n), 0);
    const std::size_t used = static_cast<std::size_t>(r.W()) * mFormat.PixelBytes();
    for (int i = 0; i < n; ++i) {
      std::memcpy(mPacked.data() + static_cast<std::size_t>(i) * rowBytes, At(r.L, y + i), used);
    }
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, mWindow, mGC, X11Int<uint16_t>(r.W()),
                  X11Int<uint16_t>(n), X11Int<int16_t>(r.L), X11Int<int16_t>(y), 0,
                  static_cast<uint8_t>(mFormat.Depth()), static_cast<uint32_t>(mPacked.size()),
                  mPacked.data());
  }
}
