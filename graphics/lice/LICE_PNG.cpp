// PNG images by libpng; the only file that includes it.
#include "graphics/lice/LICE_PNG.h"

#include <png.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr png_uint_32 kMaxSide = 16384;
constexpr png_uint_32 kMaxPixels = png_uint_32{1} << 24;
constexpr std::size_t kMaxFile = std::size_t{1} << 27;  // more than the largest image unpacked

// The decoder's handle. libpng's simplified interface catches its own long jumps before they
// reach a frame of ours.
struct Decoder {
  Decoder() { image.version = PNG_IMAGE_VERSION; }
  ~Decoder() { png_image_free(&image); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  png_image image{};
};

bool Decode(const void* data, std::size_t size, LICE_IBitmap& into) {
  Decoder decoder;
  png_image& image = decoder.image;
  if (!png_image_begin_read_from_memory(&image, data, size)) return false;
  if (image.width > kMaxSide || image.height > kMaxSide ||
      image.width * image.height > kMaxPixels) {
    return false;
  }
  image.format = PNG_FORMAT_ARGB;
  // Files of 16 bits without a gamma of their own hold the same curve as those of 8 bits.
  image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
  into.resize(static_cast<int>(image.width), static_cast<int>(image.height));
  if (!into.getBits()) return false;
  const png_int_32 stride = into.getRowSpan() * static_cast<int>(sizeof(LICE_pixel));
  return png_image_finish_read(&image, nullptr, into.getBits(), into.isFlipped() ? -stride : stride,
                               nullptr) != 0;
}

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// The whole file; empty if it can't be read or is too large to be an image of ours.
std::vector<unsigned char> ReadFile(const char* path) {
  const std::unique_ptr<std::FILE, FileCloser> file(path ? std::fopen(path, "rb") : nullptr);
  std::vector<unsigned char> bytes;
  if (!file) return bytes;
  unsigned char chunk[16384];
  while (const std::size_t n = std::fread(chunk, 1, sizeof chunk, file.get())) {
    if (bytes.size() + n > kMaxFile) return {};
    bytes.insert(bytes.end(), chunk, chunk + n);
  }
  return bytes;
}

}  // namespace

LICE_IBitmap* LICE_LoadPNGFromMemory(const void* data, std::size_t size, LICE_IBitmap* into) {
  std::unique_ptr<LICE_IBitmap> made;
  if (!into) {
    made = std::make_unique<LICE_MemBitmap>(0, 0, 4);
    into = made.get();
  }
  if (!data || size == 0 || !Decode(data, size, *into)) {
    into->resize(0, 0);
    return nullptr;
  }
  made.release();
  return into;
}

LICE_IBitmap* LICE_LoadPNG(const char* path, LICE_IBitmap* into) {
  const std::vector<unsigned char> bytes = ReadFile(path);
  return LICE_LoadPNGFromMemory(bytes.data(), bytes.size(), into);
}
