// Construction and destruction.
#include "plugin/Tolmara.h"

#include <atomic>

#include "display/ITolmaraWaveformSpectrogram.h"
#include "numeric/FFTWrap.h"
#include "numeric/VectorizedFunctions.h"
#include "plugin/FactoryPresets.h"

namespace {

constexpr const char* kChannels = "1-1 2-2";
constexpr const char* kEffectName = "Tolmara";
constexpr const char* kProductName = "";
constexpr const char* kManufacturer = "Halden Merrow";
constexpr int kVersion = 0x00010000;
constexpr int kUniqueID = 'z' << 24 | 'T' << 16 | 'o' << 8 | 'l';
constexpr int kManufacturerID = 'H' << 8 | 'M';

}  // namespace

Tolmara::Tolmara(audioMasterCallback hostCallback)
    : IPlugVST(hostCallback, kNumParams, kChannels, kNumPresets, kEffectName, kProductName,
               kManufacturer, kVersion, kUniqueID, kManufacturerID) {
  // Other instances may be running; the answer is always the same.
  std::atomic_ref(vectorized_functions_supports_AVX)
      .store(static_cast<unsigned char>(VectorizedFunctions<float>::AVXCheckAllFeatures()),
             std::memory_order_relaxed);
  FFTWrap<float>::disable_fast_memory_manager();
  BuildEditor();
  MakeFactoryPresets();
  ReadHostFormat();
  CopyParams();
  AllocateBuffers(mBlockSize);
  BuildPanner();
  SettleStages();
  RenderNow();
  mFirDirty = false;
}

Tolmara::~Tolmara() {
  if (mWorker.joinable()) mWorker.join();
}
