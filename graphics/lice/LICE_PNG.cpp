// PNG images by libpng; the only file that includes it.
#include "graphics/lice/LICE_PNG.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr png_uint_32 kMaxSide = 16384;
constexpr png_uint_32 kMaxPixels = png_uint_32{1} << 24;

// libpng reports errors by a long jump. Those functions below that set its target hold no object
// that needs to be destroyed; what is to be released is owned here, by their callers.
struct Decoder {
  Decoder() = default;
  ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  png_structp png = nullptr;
  png_infop info = nullptr;
};

[[noreturn]] void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void OnWarning(png_structp, png_const_charp) {}

// Reads up to the pixels and asks for them as bytes A, R, G, B.
bool ReadHeader(Decoder& d, std::FILE* file) {
  d.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
  if (d.png) d.info = png_create_info_struct(d.png);
  if (!d.info) return false;
  if (setjmp(png_jmpbuf(d.png))) return false;
  png_set_user_limits(d.png, kMaxSide, kMaxSide);
  // Damage counts wherever it is: without the chunk of its transparency a picture is another.
  png_set_crc_action(d.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
  png_init_io(d.png, file);
  png_read_info(d.png, d.info);
  png_set_expand(d.png);
  png_set_scale_16(d.png);
  png_set_gray_to_rgb(d.png);
  if ((png_get_color_type(d.png, d.info) & PNG_COLOR_MASK_ALPHA) ||
      png_get_valid(d.png, d.info, PNG_INFO_tRNS)) {
    png_set_swap_alpha(d.png);
  } else {
    png_set_add_alpha(d.png, 0xFF, PNG_FILLER_BEFORE);
  }
  png_set_interlace_handling(d.png);
  png_read_update_info(d.png, d.info);
  return png_get_rowbytes(d.png, d.info) ==
         sizeof(LICE_pixel) * std::size_t{png_get_image_width(d.png, d.info)};
}

bool ReadPixels(Decoder& d, png_bytepp rows) {
  if (setjmp(png_jmpbuf(d.png))) return false;
  png_read_image(d.png, rows);
  png_read_end(d.png, nullptr);  // checks what follows the last pixel
  return true;
}

bool Decode(std::FILE* file, LICE_IBitmap& into) {
  Decoder decoder;
  if (!ReadHeader(decoder, file)) return false;
  const png_uint_32 width = png_get_image_width(decoder.png, decoder.info);
  const png_uint_32 height = png_get_image_height(decoder.png, decoder.info);
  if (width * height > kMaxPixels) return false;
  into.resize(static_cast<int>(width), static_cast<int>(height));
  if (!into.getBits()) return false;
  std::vector<png_bytep> rows(height);
  for (std::size_t y = 0; y < height; ++y) {
    LICE_pixel* const row = into.getBits() + y * static_cast<std::size_t>(into.getRowSpan());
    rows[y] = reinterpret_cast<png_bytep>(row);
  }
  if (into.isFlipped()) std::reverse(rows.begin(), rows.end());
  return ReadPixels(decoder, rows.data());
}

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

LICE_IBitmap* Load(const File& file, LICE_IBitmap* into) {
  std::unique_ptr<LICE_IBitmap> made;
  if (!into) {
    made = std::make_unique<LICE_MemBitmap>(0, 0, 4);
    into = made.get();
  }
  if (!file || !Decode(file.get(), *into)) {
    into->resize(0, 0);
    return nullptr;
  }
  return made ? made.release() : into;
}

}  // namespace

LICE_IBitmap* LICE_LoadPNGFromMemory(const void* data, std::size_t size, LICE_IBitmap* into) {
  const bool isEmpty = !data || size == 0;
  return Load(File(isEmpty ? nullptr : fmemopen(const_cast<void*>(data), size, "rb")), into);
}

LICE_IBitmap* LICE_LoadPNG(const char* path, LICE_IBitmap* into) {
  return Load(File(path ? std::fopen(path, "rb") : nullptr), into);
}
