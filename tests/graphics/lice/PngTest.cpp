// PNG files of every kind, written here, and files that are damaged.
#include <png.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/graphics/lice/Pixels.h"
#include "tests/graphics/lice/PngCrc.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Format {
  int color, depth;
  bool interlaced = false;
  png_uint_32 w = 13, h = 9;
};

// One sample per channel of a pixel, 0 or the depth's maximum or something between.
int Sample(int x, int y, int channel, int depth) {
  const int max = (1 << depth) - 1;
  return ((x * 7 + y * 13 + channel * 5) % 4) * max / 3;
}

int ChannelsOf(int color) {
  return color == PNG_COLOR_TYPE_RGB          ? 3
         : color == PNG_COLOR_TYPE_RGBA       ? 4
         : color == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                              : 1;
}

std::vector<Bytes> SampleRows(const Format& f) {
  std::vector<Bytes> rows;
  for (int y = 0; y < static_cast<int>(f.h); ++y) {
    std::string bits;
    for (int x = 0; x < static_cast<int>(f.w); ++x) {
      for (int c = 0; c < ChannelsOf(f.color); ++c) {
        const int depth = f.color == PNG_COLOR_TYPE_PALETTE ? 1 : f.depth;
        const int value = Sample(x, y, c, depth);
        for (int bit = f.depth - 1; bit >= 0; --bit) bits += value >> bit & 1 ? '1' : '0';
      }
    }
    Bytes row((bits.size() + 7) / 8);
    for (std::size_t i = 0; i < bits.size(); ++i) {
      if (bits[i] == '1') row[i / 8] = static_cast<unsigned char>(row[i / 8] | 0x80 >> i % 8);
    }
    rows.push_back(row);
  }
  return rows;
}

// A file of those samples; a palette has two colours, one of them translucent.
Bytes Encode(const Format& format) {
  Bytes file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &file,
      [](png_structp p, png_bytep data, std::size_t n) {
        auto* out = static_cast<Bytes*>(png_get_io_ptr(p));
        out->insert(out->end(), data, data + n);
      },
      nullptr);
  png_set_IHDR(png, info, format.w, format.h, format.depth, format.color,
               format.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (format.color == PNG_COLOR_TYPE_PALETTE) {
    const png_color palette[] = {{10, 20, 30}, {255, 0, 7}};
    const png_byte alpha[] = {255, 99};
    png_set_PLTE(png, info, palette, 2);
    png_set_tRNS(png, info, alpha, 2, nullptr);
  }
  png_write_info(png, info);
  std::vector<Bytes> rows = SampleRows(format);
  std::vector<png_bytep> pointers;
  for (Bytes& row : rows) pointers.push_back(row.data());
  png_write_image(png, pointers.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return file;
}

std::vector<LICE_pixel> ExpectedPixels(const Format& f) {
  std::vector<LICE_pixel> pixels;
  const auto byte = [&](int x, int y, int c) {
    return Sample(x, y, c, f.depth) * 255 / ((1 << f.depth) - 1);
  };
  for (int y = 0; y < static_cast<int>(f.h); ++y) {
    for (int x = 0; x < static_cast<int>(f.w); ++x) {
      const int first = byte(x, y, 0);
      switch (f.color) {
        case PNG_COLOR_TYPE_PALETTE:
          pixels.push_back(Sample(x, y, 0, 1) ? LICE_RGBA(255, 0, 7, 99)
                                              : LICE_RGBA(10, 20, 30, 255));
          break;
        case PNG_COLOR_TYPE_GRAY: pixels.push_back(LICE_RGBA(first, first, first, 255)); break;
        case PNG_COLOR_TYPE_GRAY_ALPHA:
          pixels.push_back(LICE_RGBA(first, first, first, byte(x, y, 1)));
          break;
        default:
          pixels.push_back(LICE_RGBA(first, byte(x, y, 1), byte(x, y, 2),
                                     f.color == PNG_COLOR_TYPE_RGBA ? byte(x, y, 3) : 255));
      }
    }
  }
  return pixels;
}

std::unique_ptr<LICE_IBitmap> Load(const Bytes& file) {
  return std::unique_ptr<LICE_IBitmap>(LICE_LoadPNGFromMemory(file.data(), file.size()));
}

constexpr Format kSmall{PNG_COLOR_TYPE_RGBA, 8};

TEST(LoadPng, ReadsEveryKindOfFileAsTheSamePixels) {
  constexpr int kKinds[][2] = {
      {PNG_COLOR_TYPE_GRAY, 1},        {PNG_COLOR_TYPE_GRAY, 2},    {PNG_COLOR_TYPE_GRAY, 4},
      {PNG_COLOR_TYPE_GRAY, 8},        {PNG_COLOR_TYPE_GRAY, 16},   {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
      {PNG_COLOR_TYPE_GRAY_ALPHA, 16}, {PNG_COLOR_TYPE_RGB, 8},     {PNG_COLOR_TYPE_RGB, 16},
      {PNG_COLOR_TYPE_RGBA, 8},        {PNG_COLOR_TYPE_RGBA, 16},   {PNG_COLOR_TYPE_PALETTE, 1},
      {PNG_COLOR_TYPE_PALETTE, 2},     {PNG_COLOR_TYPE_PALETTE, 4}, {PNG_COLOR_TYPE_PALETTE, 8}};
  for (const auto& [color, depth] : kKinds) {
    for (const bool interlaced : {false, true}) {
      const Format format{color, depth, interlaced};
      const Bytes file = Encode(format);
      const auto made = Load(file);
      ASSERT_TRUE(made) << color << " " << depth;
      EXPECT_EQ(made->getRowSpan(), 16);
      EXPECT_TRUE(SameScreen(*made, ExpectedPixels(format)))
          << color << " " << depth << " " << interlaced;
      FlippedBitmap into(2, 2);
      EXPECT_EQ(LICE_LoadPNGFromMemory(file.data(), file.size(), &into), &into);
      EXPECT_TRUE(SameScreen(into, ExpectedPixels(format))) << color << " " << depth << " flipped";
    }
  }
}

TEST(LoadPng, GivesNothingForTruncatedOrDamagedFiles) {
  constexpr std::size_t kHeaderData = 16, kHeaderCrc = 29;
  const Bytes file = Encode({PNG_COLOR_TYPE_PALETTE, 4, true});
  for (std::size_t n = 0; n < file.size(); ++n) {
    LICE_MemBitmap into(5, 5);
    EXPECT_FALSE(LICE_LoadPNGFromMemory(Bytes(file.data(), file.data() + n).data(), n, &into));
    EXPECT_EQ(into.getWidth(), 0) << n;
    for (int bit = 1; bit < 256; bit *= 2) {
      Bytes damaged = file;
      damaged[n] = static_cast<unsigned char>(damaged[n] ^ bit);
      EXPECT_FALSE(Load(damaged)) << "byte " << n << " bit " << bit;
      // Damage of the header that its checksum does not tell.
      if (n < kHeaderData || n >= kHeaderCrc) continue;
      WritePngCrc(&damaged[12], 17);
      Load(damaged);
    }
  }
}

TEST(LoadPng, RefusesImagesThatAreTooLarge) {
  const auto loads = [](png_uint_32 w, png_uint_32 h) {
    return Load(Encode({PNG_COLOR_TYPE_GRAY, 1, false, w, h})) != nullptr;
  };
  EXPECT_TRUE(loads(16384, 1));
  EXPECT_FALSE(loads(16385, 1));
  EXPECT_FALSE(loads(1, 16385));
  EXPECT_FALSE(loads(16384, 1025));
  // A header that announces two thousand million pixels each way.
  Bytes file = Encode(kSmall);
  std::fill(&file[16], &file[24], static_cast<unsigned char>(0x7F));
  WritePngCrc(&file[12], 17);
  EXPECT_FALSE(Load(file));
}

TEST(LoadPng, ReadsFilesByPathAndReportsMissingOnesAsNull) {
  const auto folder = std::filesystem::path(testing::TempDir()) / "lice_png";
  std::filesystem::create_directories(folder);
  const Bytes file = Encode(kSmall);
  std::ofstream(folder / "picture.png", std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  const std::unique_ptr<LICE_IBitmap> bitmap(LICE_LoadPNG((folder / "picture.png").c_str()));
  ASSERT_TRUE(bitmap);
  EXPECT_TRUE(SameScreen(*bitmap, ExpectedPixels(kSmall)));
  LICE_MemBitmap into(3, 3);
  EXPECT_EQ(LICE_LoadPNG((folder / "none.png").c_str(), &into), nullptr);
  EXPECT_EQ(into.getBits(), nullptr);
  EXPECT_EQ(LICE_LoadPNG(folder.c_str()), nullptr);
  EXPECT_EQ(LICE_LoadPNG(nullptr), nullptr);
  std::filesystem::remove_all(folder);
}

}  // namespace
