// Finding the layout of a visual, and conversion to it.
#include "graphics/x11/server/X11PixelFormat.h"

#include <bit>

namespace {

std::array<uint32_t, 256> TableOf(uint32_t mask) {
  std::array<uint32_t, 256> table{};
  const int bits = std::popcount(mask);
  const int shift = std::countr_zero(mask);
  for (uint32_t v = 0; mask && v < table.size(); ++v) {
    // A channel wider than a byte repeats the byte's upper bits below it.
    const uint32_t scaled = bits <= 8 ? v >> (8 - bits) : v << (bits - 8) | v >> (16 - bits);
    table[v] = scaled << shift & mask;
  }
  return table;
}

const xcb_visualtype_t* FindVisual(const xcb_screen_t& screen, xcb_visualid_t visual, int depth) {
  for (auto d = xcb_screen_allowed_depths_iterator(&screen); d.rem; xcb_depth_next(&d)) {
    if (d.data->depth != depth) continue;
    for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
      if (v.data->visual_id == visual) return v.data;
    }
  }
  return nullptr;
}

bool HasColourMasks(const xcb_visualtype_t& visual) {
  const auto fits = [](uint32_t mask) { return mask && std::popcount(mask) <= 16; };
  return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && fits(visual.red_mask) &&
         fits(visual.green_mask) && fits(visual.blue_mask);
}

}  // namespace

X11PixelFormat::X11PixelFormat(const Layout& layout)
    : mLayout(layout),
      mRed(TableOf(layout.red)),
      mGreen(TableOf(layout.green)),
      mBlue(TableOf(layout.blue)) {
  const uint32_t all = layout.depth >= 32 ? ~0U : (1U << layout.depth) - 1;
  mFiller = all & ~(layout.red | layout.green | layout.blue);
}

std::optional<X11PixelFormat> X11PixelFormat::Find(const xcb_setup_t* setup,
                                                   const xcb_screen_t& screen,
                                                   xcb_visualid_t visual, int depth) {
  const xcb_visualtype_t* type = FindVisual(screen, visual, depth);
  if (!type || !HasColourMasks(*type)) return std::nullopt;
  for (auto f = xcb_setup_pixmap_formats_iterator(setup); f.rem; xcb_format_next(&f)) {
    if (f.data->depth != depth) continue;
    const int bits = f.data->bits_per_pixel;
    if (bits != 16 && bits != 24 && bits != 32) return std::nullopt;
    Layout layout;
    layout.depth = depth;
    layout.bitsPerPixel = bits;
    layout.scanlinePad = f.data->scanline_pad;
    layout.mostSignificantFirst = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    layout.red = type->red_mask;
    layout.green = type->green_mask;
    layout.blue = type->blue_mask;
    return X11PixelFormat(layout);
  }
  return std::nullopt;
}

std::size_t X11PixelFormat::RowBytes(int width) const {
  const auto bits =
      static_cast<std::size_t>(width) * static_cast<std::size_t>(mLayout.bitsPerPixel);
  const auto pad = static_cast<std::size_t>(mLayout.scanlinePad);
  return (bits + pad - 1) / pad * pad / 8;
}

uint32_t X11PixelFormat::Word(LICE_pixel p) const {
  return mRed[p >> 8 & 0xFF] | mGreen[p >> 16 & 0xFF] | mBlue[p >> 24] | mFiller;
}

template <int kBytes>
void X11PixelFormat::ConvertAs(const LICE_pixel* pixels, int count, uint8_t* out) const {
  const int first = mLayout.mostSignificantFirst ? 8 * (kBytes - 1) : 0;
  const int step = mLayout.mostSignificantFirst ? -8 : 8;
  for (int i = 0; i < count; ++i) {
    const uint32_t word = Word(pixels[i]);
    int shift = first;
    for (int k = 0; k < kBytes; ++k, shift += step) *out++ = static_cast<uint8_t>(word >> shift);
  }
}

void X11PixelFormat::Convert(const LICE_pixel* pixels, int count, uint8_t* out) const {
  switch (PixelBytes()) {
    case 2: return ConvertAs<2>(pixels, count, out);
    case 3: return ConvertAs<3>(pixels, count, out);
    default: return ConvertAs<4>(pixels, count, out);
  }
}
