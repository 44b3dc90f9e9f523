#include "graphics/lice/LICE_Bitmap.h"

#include <cstdint>
#include <new>

namespace {

constexpr std::size_t kAlignment = 64;                      // bytes: one cache line
constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;  // 1 GiB, and no overflow in int

// Padding to a multiple of the lowest set bit of `linealign`, at most 16, as a mask.
int AlignMask(int linealign) {
  if (linealign <= 0) return 0;
  return std::min(linealign & -linealign, 16) - 1;
}

bool Fits(int w, int h) {
  constexpr int kMaxSide = 1 << 24;
  return w > 0 && h > 0 && w <= kMaxSide && h <= kMaxSide &&
         (std::int64_t{w} + 16) * h <= kMaxPixels;
}

}  // namespace

bool LICE_PixelMemory::reserve(int span, int rows) {
  const std::size_t needed =
      static_cast<std::size_t>(span) * static_cast<std::size_t>(rows) * sizeof(LICE_pixel);
  if (mPixels && needed <= mBytes) return true;
  free();
  const std::size_t usable = needed + needed / 4;
  mBlock.reset(new (std::nothrow) unsigned char[usable + kAlignment - 1]());
  if (!mBlock) return false;
  const auto start = reinterpret_cast<std::uintptr_t>(mBlock.get());
  const std::size_t skip = (kAlignment - start % kAlignment) % kAlignment;
  mPixels = reinterpret_cast<LICE_pixel*>(mBlock.get() + skip);
  mBytes = usable;
  return true;
}

void LICE_PixelMemory::free() {
  mBlock.reset();
  mPixels = nullptr;
  mBytes = 0;
}

LICE_MemBitmap::LICE_MemBitmap(int w, int h, int linealign) : mAlignMask(AlignMask(linealign)) {
  LICE_MemBitmap::resize(w, h);
}

bool LICE_MemBitmap::resize(int w, int h) {
  if (w == mWidth && h == mHeight) return false;
  const bool was_empty = mWidth == 0;
  if (Fits(w, h) && mMemory.reserve((w + mAlignMask) & ~mAlignMask, h)) {
    mWidth = w;
    mHeight = h;
    return true;
  }
  mMemory.free();
  mWidth = mHeight = 0;
  return !was_empty;
}

LICE_SysBitmap::LICE_SysBitmap(int w, int h) { LICE_SysBitmap::resize(w, h); }

bool LICE_SysBitmap::resize(int w, int h) {
  if (w == mWidth && h == mHeight) return false;
  const bool was_empty = mWidth == 0;
  if (!Fits(w, h)) {
    mMemory.free();
    mWidth = mHeight = mContextWidth = mContextHeight = 0;
    return !was_empty;
  }
  if (w > mContextWidth || h > mContextHeight) {
    mContextWidth = (w + 3) & ~3;
    mContextHeight = h;
    mMemory.free();
    if (!mMemory.reserve(mContextWidth, mContextHeight)) return resize(0, 0);
  }
  mWidth = w;
  mHeight = h;
  return true;
}
