// Presets as source text for a product's constructor.
#include <string>

#include "iplug/Base64.h"
#include "iplug/FileBytes.h"
#include "iplug/IPlugBase.h"
#include "iplug/Numbers.h"

namespace {

// As an argument of the call would be written.
std::string ValueText(const IParam& param) {
  switch (param.Type()) {
    case kTypeInt:
    case kTypeEnum: return std::to_string(param.Int());
    case kTypeBool: return param.Bool() ? "true" : "false";
    default:
      char text[400];
      FixedText(text, sizeof text, param.Value(), 6);
      return text;
  }
}

}  // namespace

bool IPlugBase::DumpPresetSrcCode(const char* path, const char** paramEnumNames) const {
  std::string text = "  MakePresetFromNamedParams(\"name\", " + std::to_string(NParams());
  for (int i = 0; i < NParams(); ++i) {
    text += std::string(",\n    ") + paramEnumNames[i] + ", " + ValueText(*GetParam(i));
  }
  text += ");\n";
  return WriteFileBytes(path, text.data(), text.size());
}

bool IPlugBase::DumpPresetBlob(const char* path) const {
  const IPreset* preset = mPresets.Get(mCurrentPresetIdx);
  if (!preset) return false;
  const int size = preset->mChunk.Size();
  const std::string text = "MakePresetFromBlob(\"name\", \"" +
                           Base64Encode(preset->mChunk.GetBytes(), static_cast<std::size_t>(size)) +
                           "\", " + std::to_string(size) + ");\n";
  return WriteFileBytes(path, text.data(), text.size());
}
