#include "tests/graphics/lice/Pixels.h"

bool FlippedBitmap::resize(int w, int h) {
  mWidth = w;
  mHeight = h;
  mPixels.assign(static_cast<std::size_t>(getRowSpan()) * static_cast<std::size_t>(h), 0);
  return true;
}

LICE_pixel RandomPixel(Random& random) {
  const auto byte = [&random] {
    const int kind = random.integer(0, 3);
    return kind == 0 ? 0 : kind == 1 ? 255 : random.integer(0, 255);
  };
  const int r = byte(), g = byte(), b = byte(), a = byte();
  return LICE_RGBA(r, g, b, a);
}

void Randomise(LICE_IBitmap& bitmap, Random& random) {
  for (int y = 0; y < bitmap.getHeight(); ++y) {
    for (int x = 0; x < bitmap.getWidth(); ++x) {
      bitmap.getBits()[y * bitmap.getRowSpan() + x] = RandomPixel(random);
    }
  }
}

std::vector<LICE_pixel> Screen(const LICE_IBitmap& bitmap) {
  std::vector<LICE_pixel> pixels;
  for (int y = 0; y < bitmap.getHeight(); ++y) {
    const int row = bitmap.isFlipped() ? bitmap.getHeight() - 1 - y : y;
    const LICE_pixel* const p = bitmap.getBits() + row * bitmap.getRowSpan();
    pixels.insert(pixels.end(), p, p + bitmap.getWidth());
  }
  return pixels;
}

testing::AssertionResult SameScreen(const LICE_IBitmap& actual,
                                    const std::vector<LICE_pixel>& expected) {
  const std::vector<LICE_pixel> pixels = Screen(actual);
  if (pixels.size() != expected.size()) return testing::AssertionFailure() << "sizes differ";
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    if (pixels[i] == expected[i]) continue;
    const auto w = static_cast<std::size_t>(actual.getWidth());
    return testing::AssertionFailure() << "at (" << i % w << ", " << i / w << ") " << std::hex
                                       << pixels[i] << ", expected " << expected[i];
  }
  return testing::AssertionSuccess();
}

int PaintedCount(const LICE_IBitmap& bitmap) {
  int count = 0;
  for (const LICE_pixel p : Screen(bitmap)) count += p != 0;
  return count;
}

double PaintedArea(const LICE_IBitmap& bitmap) {
  double area = 0.0;
  for (const LICE_pixel p : Screen(bitmap)) area += LICE_GETR(p) / 255.0;
  return area;
}

std::vector<LICE_pixel> Part(const LICE_IBitmap& bitmap, int x, int y, int w, int h) {
  std::vector<LICE_pixel> pixels;
  for (int i = 0; i < w * h; ++i) pixels.push_back(LICE_GetPixel(&bitmap, x + i % w, y + i / w));
  return pixels;
}
