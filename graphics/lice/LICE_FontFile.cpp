#include "graphics/lice/LICE_FontFile.h"

#include <fontconfig/fontconfig.h>

namespace {

struct PatternDeleter {
  void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

const FcChar8* Utf8(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

// Families in the order of preference; the last is fontconfig's own choice.
Pattern Wanted(const LICE_FontRequest& request) {
  Pattern pattern(FcPatternCreate());
  if (!pattern) return nullptr;
  for (const char* family : {request.face, "DejaVu Sans Mono", "monospace"}) {
    if (family && *family) FcPatternAddString(pattern.get(), FC_FAMILY, Utf8(family));
  }
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(request.weight));
  FcPatternAddInteger(pattern.get(), FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

}  // namespace

LICE_FontFile LICE_FindFontFile(const LICE_FontRequest& request) {
  LICE_FontFile file;
  const Pattern wanted = Wanted(request);
  if (!wanted) return file;
  FcResult result;
  const Pattern match(FcFontMatch(nullptr, wanted.get(), &result));
  FcChar8* path = nullptr;
  if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &path) != FcResultMatch) return file;
  file.path = reinterpret_cast<const char*>(path);
  FcPatternGetInteger(match.get(), FC_INDEX, 0, &file.index);
  int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
  FcPatternGetInteger(match.get(), FC_WEIGHT, 0, &weight);
  FcPatternGetInteger(match.get(), FC_SLANT, 0, &slant);
  // Common configurations answer with the style that was wanted and a note to imitate it.
  FcBool imitate_bold = FcFalse;
  FcMatrix* imitate_slant = nullptr;
  FcPatternGetBool(match.get(), FC_EMBOLDEN, 0, &imitate_bold);
  FcPatternGetMatrix(match.get(), FC_MATRIX, 0, &imitate_slant);
  file.needs_bold = request.weight >= 600 && (weight < FC_WEIGHT_DEMIBOLD || imitate_bold);
  file.needs_slant = request.italic && (slant == FC_SLANT_ROMAN || imitate_slant);
  return file;
}
