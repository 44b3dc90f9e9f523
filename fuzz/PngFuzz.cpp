// Feeds any bytes to the PNG reader, as they are and with right checksums, and draws what comes
// out.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "graphics/lice/LICE.h"
#include "tests/graphics/lice/PngCrc.h"

namespace {

void LoadAndDraw(const std::uint8_t* data, std::size_t size) {
  const std::unique_ptr<LICE_IBitmap> bitmap(LICE_LoadPNGFromMemory(data, size));
  if (!bitmap) return;
  // A picture that was accepted has a size, and all of its pixels can be read.
  const int w = bitmap->getWidth(), h = bitmap->getHeight();
  if (w < 1 || h < 1 || !bitmap->getBits()) std::abort();
  LICE_MemBitmap canvas(64, 64);
  LICE_Blit(&canvas, bitmap.get(), 0, 0, 0, 0, 64, 64, 1.0f, LICE_BLIT_USE_ALPHA);
  LICE_ScaledBlit(&canvas, bitmap.get(), 0, 0, 64, 64, 0.0f, 0.0f, static_cast<float>(w),
                  static_cast<float>(h), 1.0f, LICE_BLIT_MODE_ADD | LICE_BLIT_FILTER_BILINEAR);
}

// Without this nearly every mutation would end at a checksum.
void RepairChecksums(std::vector<std::uint8_t>& file) {
  constexpr std::size_t kSignature = 8, kFrame = 12;  // length, type and checksum of a chunk
  for (std::size_t at = kSignature; at + kFrame <= file.size();) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) length = length << 8 | file[at + i];
    if (length > file.size() - at - kFrame) return;
    WritePngCrc(&file[at + 4], length + 4);
    at += kFrame + length;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  LoadAndDraw(data, size);
  std::vector<std::uint8_t> repaired(data, data + size);
  RepairChecksums(repaired);
  LoadAndDraw(repaired.data(), repaired.size());
  return 0;
}
