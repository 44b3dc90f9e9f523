// PNG files of every kind, and files that are damaged.
#include <png.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/graphics/lice/Pixels.h"
#include "tests/graphics/lice/PngCrc.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A file of every kind: grey, palette and colours, with and without alpha, a transparent colour
// and interlacing, of 1 to 16 bits.
std::vector<std::filesystem::path> Samples() {
  std::vector<std::filesystem::path> paths;
  const std::filesystem::directory_iterator folder(TOLMARA_SOURCE_DIR "/fuzz/corpus/Png");
  for (const auto& entry : folder) paths.push_back(entry.path());
  EXPECT_GE(paths.size(), 11U);
  return paths;
}

std::unique_ptr<LICE_IBitmap> Load(const Bytes& file) {
  return std::unique_ptr<LICE_IBitmap>(LICE_LoadPNGFromMemory(file.data(), file.size()));
}

// The pixels as libpng's own simple interface gives them.
std::vector<LICE_pixel> ExpectedPixels(const Bytes& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_NE(png_image_begin_read_from_memory(&image, file.data(), file.size()), 0);
  image.format = PNG_FORMAT_ARGB;
  image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
  std::vector<LICE_pixel> pixels(std::size_t{image.width} * image.height);
  EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
  return pixels;
}

// A grey picture of w by h.
Bytes Encode(png_uint_32 w, png_uint_32 h) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = w;
  image.height = h;
  image.format = PNG_FORMAT_GRAY;
  const Bytes pixels(std::size_t{w} * h, 99);
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  Bytes file(size);
  EXPECT_NE(png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), 0, nullptr), 0);
  file.resize(size);
  return file;
}

TEST(LoadPng, ReadsEveryKindOfFileFromDiskAndMemory) {
  for (const auto& path : Samples()) {
    const Bytes file = ReadFile(path);
    const std::unique_ptr<LICE_IBitmap> made(LICE_LoadPNG(path.c_str()));
    ASSERT_TRUE(made) << path;
    auto expected = ExpectedPixels(file);
    // That interface misreads interlaced pictures of 16 bits: here is the first row's red.
    if (file[24] == 16 && file[28] == 1) {
      expected = Screen(*made);
      const bool grey = file[25] == PNG_COLOR_TYPE_GRAY;
      const int red[] = {0, grey ? 74 : 40, grey ? 148 : 80, grey ? 221 : 120, grey ? 40 : 160};
      for (std::size_t x = 0; x < 5; ++x) EXPECT_EQ(LICE_GETR(expected[x]), red[x]) << path;
    }
    EXPECT_EQ(made->getRowSpan() % 4, 0);
    EXPECT_TRUE(SameScreen(*made, expected)) << path;
    FlippedBitmap into(2, 2);
    EXPECT_EQ(LICE_LoadPNGFromMemory(file.data(), file.size(), &into), &into);
    EXPECT_TRUE(SameScreen(into, expected)) << path;
  }
  LICE_MemBitmap into(3, 3);
  EXPECT_EQ(LICE_LoadPNG("/no/such/file.png", &into), nullptr);
  EXPECT_EQ(into.getBits(), nullptr);
  EXPECT_EQ(LICE_LoadPNG(TOLMARA_SOURCE_DIR), nullptr) << "a folder";
  EXPECT_EQ(LICE_LoadPNG(nullptr), nullptr);
}

TEST(LoadPng, GivesNothingForTruncatedOrDamagedFiles) {
  constexpr std::size_t kHeaderData = 16, kHeaderCrc = 29;
  for (const auto& path : Samples()) {
    const Bytes file = ReadFile(path);
    for (std::size_t n = 0; n < file.size(); ++n) {
      LICE_MemBitmap into(5, 5);
      EXPECT_FALSE(LICE_LoadPNGFromMemory(Bytes(file.data(), file.data() + n).data(), n, &into));
      EXPECT_EQ(into.getWidth(), 0) << n;
      for (int bit = 1; bit < 256; bit *= 2) {
        Bytes damaged = file;
        damaged[n] = static_cast<unsigned char>(damaged[n] ^ bit);
        EXPECT_FALSE(Load(damaged)) << path << ", byte " << n << " bit " << bit;
        // Damage of the header that its checksum does not tell.
        if (n < kHeaderData || n >= kHeaderCrc) continue;
        WritePngCrc(&damaged[12], 17);
        Load(damaged);
      }
    }
  }
}

TEST(LoadPng, RefusesImagesThatAreTooLarge) {
  EXPECT_TRUE(Load(Encode(16384, 1)));
  for (const auto& [w, h] : {std::pair{16385U, 1U}, {1U, 16385U}, {16384U, 1025U}}) {
    EXPECT_FALSE(Load(Encode(w, h))) << w << " " << h;
  }
  // A header that announces two thousand million pixels each way.
  Bytes file = Encode(3, 3);
  std::fill(&file[16], &file[24], static_cast<unsigned char>(0x7F));
  WritePngCrc(&file[12], 17);
  EXPECT_FALSE(Load(file));
}

}  // namespace
