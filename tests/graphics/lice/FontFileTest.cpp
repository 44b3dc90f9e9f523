#include "graphics/lice/LICE_FontFile.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

namespace {

const FcChar8* Utf8(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

// For its lifetime, the system has one font only: upright and of regular weight.
class OneFont {
 public:
  explicit OneFont(const char* rules) : mBefore(FcConfigReference(nullptr)) {
    const LICE_FontFile file = LICE_FindFontFile({});
    FcConfig* config = FcConfigCreate();
    FcConfigAppFontAddFile(config, Utf8(file.path.c_str()));
    EXPECT_TRUE(FcConfigParseAndLoadFromMemory(config, Utf8(rules), FcTrue));
    FcConfigSetCurrent(config);
    FcConfigDestroy(config);
  }
  ~OneFont() {
    FcConfigSetCurrent(mBefore);
    FcConfigDestroy(mBefore);
  }

 private:
  FcConfig* mBefore;
};

}  // namespace

TEST(FontFile, AMissingStyleIsImitatedWhetherTheSystemOwnsUpToItOrNot) {
  constexpr const char* kSilent = "<fontconfig/>";
  // As Debian has it: the answer bears the style that the font lacks.
  constexpr const char* kPretending = R"(<fontconfig><match target="font">
    <test target="pattern" name="weight" compare="more_eq"><const>bold</const></test>
    <edit name="embolden" mode="assign"><bool>true</bool></edit>
    <edit name="weight" mode="assign"><const>bold</const></edit>
  </match><match target="font">
    <test target="pattern" name="slant" compare="not_eq"><const>roman</const></test>
    <edit name="matrix" mode="assign"><matrix><double>1</double><double>0.2</double>
      <double>0</double><double>1</double></matrix></edit>
    <edit name="slant" mode="assign"><const>oblique</const></edit>
  </match></fontconfig>)";
  for (const char* rules : {kSilent, kPretending}) {
    const OneFont one(rules);
    LICE_FontRequest request;
    EXPECT_FALSE(LICE_FindFontFile(request).needs_bold || LICE_FindFontFile(request).needs_slant);
    request.weight = 700;
    request.italic = true;
    EXPECT_TRUE(LICE_FindFontFile(request).needs_bold) << rules;
    EXPECT_TRUE(LICE_FindFontFile(request).needs_slant) << rules;
  }
}
