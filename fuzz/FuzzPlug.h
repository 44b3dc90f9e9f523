// A plug-in with the product's parameters and nothing else, quick to make for every input.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "iplug/vst2/IPlugVST.h"
#include "plugin/DefineParam.h"

class FuzzPlug : public IPlugVST {
 public:
  static constexpr int kPresets = 4;
  static constexpr int kID = 0x7A546F6C;

  explicit FuzzPlug(bool chunks = false)
      : IPlugVST(nullptr, kNumParams, "1-1 2-2", kPresets, "Fuzz", "", "", 0x10000, kID, 0, 0,
                 false, chunks) {
    for (int id = 0; id < kNumParams; ++id)
      DefineParam(GetParam(id), kParamTable[static_cast<std::size_t>(id)]);
    GetParam(kRenderMode)->SetDisplayText(0, "Low Mem");
    GetParam(kRenderMode)->SetDisplayText(1, "Fast");
    GetParam(kGain)->NegateDisplay(true);
    MakeEmptyPresets();
  }

  // A host call.
  VstIntPtr Dispatch(std::int32_t opcode, std::int32_t index = 0, VstIntPtr value = 0,
                     void* ptr = nullptr, float opt = 0.0f) {
    AEffect* effect = GetAEffect();
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
  }

  VstIntPtr SetChunk(const std::uint8_t* data, std::size_t size, bool isPreset) {
    return Dispatch(effSetChunk, isPreset, static_cast<VstIntPtr>(size),
                    const_cast<std::uint8_t*>(data));
  }

  std::vector<std::uint8_t> GetChunk(bool isPreset) {
    void* data = nullptr;
    const VstIntPtr size = Dispatch(effGetChunk, isPreset, 0, &data);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
  }

  // Aborts if a parameter has left its range.
  void CheckRanges() const {
    for (int id = 0; id < kNumParams; ++id) {
      double lo = 0.0;
      double hi = 0.0;
      GetParam(id)->GetBounds(&lo, &hi);
      const double value = GetParam(id)->Value();
      if (!(value >= lo && value <= hi)) std::abort();
    }
  }

  // The same for the sound of every preset.
  void CheckPresets() {
    for (int i = 0; i < kPresets; ++i) {
      Dispatch(effSetProgram, 0, i);
      CheckRanges();
    }
  }
};
