// Bitmaps: the interface that everything draws on, and its two kinds. Tolmara uses all of it.
#pragma once

#include <cstddef>
#include <memory>

#include "graphics/lice/LICE_Pixel.h"

// A rectangle of pixels in memory. Const does not reach the pixels: a bitmap is a handle to them.
// Not synchronised: one thread at a time.
class LICE_IBitmap {
 public:
  virtual ~LICE_IBitmap() = default;
  virtual LICE_pixel* getBits() const = 0;  // first row in memory; null when empty
  virtual int getWidth() const = 0;         // pixels
  virtual int getHeight() const = 0;        // rows
  virtual int getRowSpan() const = 0;       // pixels from one row in memory to the next
  virtual bool isFlipped() const = 0;       // the first row in memory is the lowest on screen
  // True if the size changed. Contents are undefined afterwards. A size that can't be had
  // (negative, too large, no memory) leaves the bitmap empty.
  virtual bool resize(int w, int h) = 0;
  virtual void* getDC() const = 0;  // what the window system draws from; null when it can't
};

// Memory for pixels, zeroed when it is taken, its start aligned to 64 bytes.
class LICE_PixelMemory {
 public:
  // Makes room for rows x span pixels and keeps what is there if that is enough; a grow takes a
  // quarter more than needed, so that a bitmap that grows in steps seldom moves. False: no memory.
  bool reserve(int span, int rows);
  void free();
  LICE_pixel* pixels() const { return mPixels; }

 private:
  std::unique_ptr<unsigned char[]> mBlock;
  LICE_pixel* mPixels = nullptr;  // aligned, inside mBlock
  std::size_t mBytes = 0;         // usable from mPixels on
};

// Pixels on the heap. `linealign` pads rows: to a multiple of its lowest set bit, at most 16.
class LICE_MemBitmap : public LICE_IBitmap {
 public:
  explicit LICE_MemBitmap(int w = 0, int h = 0, int linealign = 4);
  LICE_MemBitmap(const LICE_MemBitmap&) = delete;
  LICE_MemBitmap& operator=(const LICE_MemBitmap&) = delete;

  LICE_pixel* getBits() const override { return mMemory.pixels(); }
  int getWidth() const override { return mWidth; }
  int getHeight() const override { return mHeight; }
  int getRowSpan() const override { return (mWidth + mAlignMask) & ~mAlignMask; }
  bool isFlipped() const override { return false; }
  bool resize(int w, int h) override;
  void* getDC() const override { return nullptr; }

 private:
  LICE_PixelMemory mMemory;
  int mWidth = 0;
  int mHeight = 0;
  int mAlignMask;
};

// The canvas that a window shows: the context keeps its size and row span until it is outgrown,
// so a window layer that attached to its memory needs to attach again only when getBits() moved.
class LICE_SysBitmap : public LICE_IBitmap {
 public:
  explicit LICE_SysBitmap(int w = 0, int h = 0);
  LICE_SysBitmap(const LICE_SysBitmap&) = delete;
  LICE_SysBitmap& operator=(const LICE_SysBitmap&) = delete;

  LICE_pixel* getBits() const override { return mMemory.pixels(); }
  int getWidth() const override { return mWidth; }
  int getHeight() const override { return mHeight; }
  int getRowSpan() const override { return mContextWidth; }
  bool isFlipped() const override { return false; }
  bool resize(int w, int h) override;
  void* getDC() const override { return mMemory.pixels(); }

 private:
  LICE_PixelMemory mMemory;
  int mWidth = 0;
  int mHeight = 0;
  int mContextWidth = 0;  // multiple of 4
  int mContextHeight = 0;
};
