// Fonts by FreeType; the only file that includes it.
#include "graphics/lice/LICE_PlatformFont.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H
#include FT_OUTLINE_H
#include FT_SYNTHESIS_H

#include <algorithm>
#include <cmath>
#include <numbers>
#include <type_traits>

#include "graphics/lice/LICE_FontFile.h"

namespace {

struct LibraryDeleter {
  void operator()(FT_Library library) const { FT_Done_FreeType(library); }
};
struct FaceDeleter {
  void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using Library = std::unique_ptr<std::remove_pointer_t<FT_Library>, LibraryDeleter>;
using Face = std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceDeleter>;

constexpr int kBlackAndWhite = 3;  // LICE_FontRequest::quality

// FreeType's library object is not safe to share between threads, so each font has its own.
class FreeTypeFont : public LICE_PlatformFont {
 public:
  FreeTypeFont(Library library, Face face, const LICE_FontFile& file,
               const LICE_FontRequest& request);

  int LineHeight() const override { return mHeight; }
  int Baseline() const override { return mBaseline; }
  double Turn() const override { return mTurn; }
  LICE_GlyphImage Render(char32_t character) override;

 private:
  FT_Int32 LoadFlags() const;
  bool Load(char32_t character);
  int CapHeight();

  Library mLibrary;  // outlives mFace
  Face mFace;
  bool mEmbolden, mSlant, mMono;
  int mHeight;
  double mTurn;
  int mBaseline = 0;
};

FreeTypeFont::FreeTypeFont(Library library, Face face, const LICE_FontFile& file,
                           const LICE_FontRequest& request)
    : mLibrary(std::move(library)),
      mFace(std::move(face)),
      mEmbolden(file.needs_bold),
      mSlant(file.needs_slant),
      mMono(request.quality == kBlackAndWhite),
      mHeight(std::clamp(request.height, 2, 512)),
      mTurn(request.escapement * std::numbers::pi / 1800.0) {
  // The line box is asked for: the size of the letters follows from the face's proportions, in
  // whole pixels, at which its hints are made to work.
  const int box = std::max(mFace->ascender - mFace->descender, 1);
  const int em = std::max(1, (mHeight * mFace->units_per_EM + box / 2) / box);
  FT_Set_Pixel_Sizes(mFace.get(), 0, static_cast<FT_UInt>(em));
  // Capitals and figures stand in the middle of the line box.
  const int cap = CapHeight();
  mBaseline = (mHeight + cap + 1) / 2;
  if (mTurn != 0.0) {
    const auto fixed = [](double v) { return static_cast<FT_Fixed>(std::lround(v * 65536.0)); };
    const double c = std::cos(mTurn), s = std::sin(mTurn);
    FT_Matrix turn{fixed(c), fixed(-s), fixed(s), fixed(c)};
    FT_Set_Transform(mFace.get(), &turn, nullptr);
  }
}

FT_Int32 FreeTypeFont::LoadFlags() const {
  if (mTurn != 0.0) return FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING;
  return FT_LOAD_NO_BITMAP | (mMono ? FT_LOAD_TARGET_MONO : FT_LOAD_TARGET_NORMAL);
}

bool FreeTypeFont::Load(char32_t character) {
  if (FT_Load_Char(mFace.get(), character, LoadFlags()) != 0) return false;
  if (mEmbolden) FT_GlyphSlot_Embolden(mFace->glyph);
  if (mSlant) FT_GlyphSlot_Oblique(mFace->glyph);
  return true;
}

// Pixels above the baseline that a capital takes as it is drawn.
int FreeTypeFont::CapHeight() {
  if (!Load('H')) return 0;
  return static_cast<int>((mFace->glyph->metrics.horiBearingY + 32) >> 6);
}

// One row of a rendered glyph as bytes of coverage.
void CopyRow(const FT_Bitmap& bitmap, int row, unsigned char* out) {
  const unsigned char* in = bitmap.buffer + std::ptrdiff_t{bitmap.pitch} * row;
  const int width = static_cast<int>(bitmap.width);
  if (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
    std::copy(in, in + width, out);
  } else if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) {
    for (int x = 0; x < width; ++x) out[x] = in[x >> 3] & (0x80 >> (x & 7)) ? 255 : 0;
  }
}

LICE_GlyphImage FreeTypeFont::Render(char32_t character) {
  LICE_GlyphImage image;
  if (!Load(character)) return image;
  const FT_GlyphSlot slot = mFace->glyph;
  image.advance = static_cast<int>((slot->metrics.horiAdvance + 32) >> 6);
  if (FT_Render_Glyph(slot, mMono ? FT_RENDER_MODE_MONO : FT_RENDER_MODE_NORMAL) != 0) {
    return image;
  }
  const FT_Bitmap& bitmap = slot->bitmap;
  image.left = slot->bitmap_left;
  image.top = slot->bitmap_top;
  image.width = static_cast<int>(bitmap.width);
  image.height = static_cast<int>(bitmap.rows);
  image.coverage.resize(std::size_t{bitmap.width} * bitmap.rows);
  for (int y = 0; y < image.height; ++y) {
    CopyRow(bitmap, y, image.coverage.data() + std::ptrdiff_t{y} * image.width);
  }
  return image;
}

}  // namespace

std::unique_ptr<LICE_PlatformFont> LICE_PlatformFont::Create(const LICE_FontRequest& request) {
  const LICE_FontFile file = LICE_FindFontFile(request);
  if (file.path.empty()) return nullptr;
  FT_Library raw_library = nullptr;
  if (FT_Init_FreeType(&raw_library) != 0) return nullptr;
  Library library(raw_library);
  // The interpreter that obeys hints in both directions: upright stems of small text then fill
  // whole columns.
  const FT_UInt full_hinting = 35;
  FT_Property_Set(raw_library, "truetype", "interpreter-version", &full_hinting);
  FT_Face raw_face = nullptr;
  if (FT_New_Face(raw_library, file.path.c_str(), file.index, &raw_face) != 0) return nullptr;
  return std::make_unique<FreeTypeFont>(std::move(library), Face(raw_face), file, request);
}
