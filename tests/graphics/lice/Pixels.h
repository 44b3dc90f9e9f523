// Bitmaps for the rasteriser's tests: random contents, comparison, and a bitmap upside down.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "graphics/lice/LICE.h"
#include "tests/support/Random.h"

// A bitmap whose rows lie in memory from the lowest up, with `padding` pixels between them.
class FlippedBitmap : public LICE_IBitmap {
 public:
  FlippedBitmap(int w, int h, int padding = 3) : mPadding(padding) { FlippedBitmap::resize(w, h); }
  LICE_pixel* getBits() const override { return mPixels.data(); }
  int getWidth() const override { return mWidth; }
  int getHeight() const override { return mHeight; }
  int getRowSpan() const override { return mWidth + mPadding; }
  bool isFlipped() const override { return true; }
  bool resize(int w, int h) override;
  void* getDC() const override { return nullptr; }

 private:
  mutable std::vector<LICE_pixel> mPixels;
  int mWidth = 0, mHeight = 0, mPadding;
};

// Any word, with whole bytes 0 and 255 far more often than by chance.
LICE_pixel RandomPixel(Random& random);
void Randomise(LICE_IBitmap& bitmap, Random& random);

// The pixels as seen on screen, row by row from the top.
std::vector<LICE_pixel> Screen(const LICE_IBitmap& bitmap);

// Success if both show the same; else names the first pixel that differs.
testing::AssertionResult SameScreen(const LICE_IBitmap& actual,
                                    const std::vector<LICE_pixel>& expected);

// Number of pixels that are not 0, and their area by brightness.
int PaintedCount(const LICE_IBitmap& bitmap);
double PaintedArea(const LICE_IBitmap& bitmap);

// What `bitmap` shows of a rectangle.
std::vector<LICE_pixel> Part(const LICE_IBitmap& bitmap, int x, int y, int w, int h);
