// The render of a new response: when it starts, what it does and how it reaches the audio path.
#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <system_error>

#include "display/ITolmaraWaveformSpectrogram.h"
#include "dsp/FIRFunctions.h"
#include "iplug/StartThread.h"
#include "numeric/Convert.h"
#include "plugin/FlushToZero.h"
#include "plugin/ResponseShaping.h"
#include "plugin/Tolmara.h"

namespace {

constexpr float kRangeDB = 60.0f;  // how far the weakest decay falls within the room's radius

// The power handed to a convolver. The largest partition, block << power, has to stay a positive
// int; values beyond mean the same sound.
int PartitionPower(int maxFFTPow, int blockSize) {
  const int room = 30 - static_cast<int>(std::bit_width(static_cast<unsigned>(blockSize)));
  return std::clamp(maxFFTPow, -1, std::max(room, 0));
}

}  // namespace

// Pairs the worker's release with the audio thread's acquire: what the worker wrote before it
// handed over is visible to whoever finds it idle. Both are plain moves on x86-64.
Tolmara::WorkerState Tolmara::LoadWorkerState() const {
  return std::atomic_ref(const_cast<WorkerState&>(mWorkerState)).load(std::memory_order_acquire);
}
void Tolmara::StoreWorkerState(WorkerState state) {
  std::atomic_ref(mWorkerState).store(state, std::memory_order_release);
}

void Tolmara::ServiceWorker() {
  const WorkerState state = LoadWorkerState();
  if (!state.mWorkerIdle) return;
  if (mFirDirty || mRenderFailed) {
    mFirDirty = false;
    mRenderFailed = false;
    StartWorker();
  } else if (state.mSwapPending) {
    StoreWorkerState({true, false});
    for (size_t i = 0; i < mConvNext.size(); ++i) std::swap(mConvNext[i], mConvActive[i]);
  }
}

void Tolmara::StartWorker() {
  if (mWorker.joinable()) mWorker.join();
  StoreWorkerState({false, LoadWorkerState().mSwapPending});
  try {
    mWorker = StartThread("tolmara-render", [this, settings = CurrentSettings()] {
      mConvNext.clear();  // retired pairs are freed here, never on the audio thread
      RenderResponse(settings, mConvNext);
    });
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "thread constructor failed");
  }
}

Tolmara::RenderSettings Tolmara::CurrentSettings() const {
  return {mRenderFast,  mNormalizeRMS,  mSampleRate,      mBlockSize, mDims,
          mTimeStretch, mTimeLinearity, mTimeAttenuation, mLowDecay,  mHighDecay,
          mLowCutFreq,  mLowCutTaps,    mTimeT0Percent,   mMaxFFTPow};
}

void Tolmara::RenderNow() {
  mConvActive.resize(2);
  RenderResponse(CurrentSettings(), mConvActive);
  StoreWorkerState({true, false});  // the audio path already has the result
}

void Tolmara::RenderResponse(const RenderSettings& settings, ConvolverSet& target) {
  const ScopedFlushToZero flushToZero;  // subnormals slow the decay stage down many times
  mDisplay->SetComputing(true);
  try {
    ConvolverSet(BuildConvolvers(settings)).swap(target);
    mRenderFailed = false;
  } catch (const std::exception&) {
    // No memory beside the sample buffers: the target stays, so that what sounds goes on sounding,
    // and the next block starts the render again.
    mFIR.reset();
    mRenderFailed = true;
  }
  mDisplay->SetComputing(false);
  StoreWorkerState({true, !mRenderFailed});
}

Tolmara::ConvolverSet Tolmara::BuildConvolvers(const RenderSettings& settings) {
  ConvolverSet convolvers(2);
  AlignedVector<float> h = Response(settings);
  if (!h.empty()) {
    const int power = PartitionPower(settings.maxFFTPow, settings.blockSize);
    convolvers[0] = std::make_unique<Convolver>(settings.blockSize, h, power);
    convolvers[1] = convolvers[0]->twin();
  } else {
    h.assign(1, 1.0f);
  }
  mDisplay->SetResponse(settings.sampleRate, h);
  return convolvers;
}

AlignedVector<float> Tolmara::Response(const RenderSettings& settings) {
  AlignedVector<DimProperties<float>> room;
  for (const DimSetting& dim : settings.dims) {
    if (!dim.enabled) continue;
    const float size = static_cast<float>(dim.size);
    room.push_back({size, std::floor(static_cast<float>(dim.depth) / 100.0f * size),
                    dB_to_mag(dim.reflection) * 100.0f});
  }
  if (room.empty()) return {};

  AlignedVector<float> h = Synthesise(settings, room);
  const int n = static_cast<int>(h.size());
  // kept: the one setting that a running render sees change, because sessions were made with it
  const float reversePercent = std::atomic_ref(mReversePercent).load(std::memory_order_relaxed);
  ReverseHead(h, reversePercent);
  CutLows(h, settings.sampleRate, settings.lowCutFreq, settings.lowCutTaps);
  TrimStart(h, n, settings.timeT0Percent);
  if (settings.normalizeRMS) NormalizeEnergy(h);
  return h;
}

AlignedVector<float> Tolmara::Synthesise(const RenderSettings& settings,
                                         AlignedVector<DimProperties<float>>& room) {
  if (!settings.renderFast) mFIR.reset();
  if (mFIR) {
    mFIR->update(room, kRangeDB, settings.sampleRate, settings.timeStretch, settings.timeLinearity,
                 settings.timeAttenuation, -settings.lowDecay, -settings.highDecay);
  } else {
    mFIR = std::make_unique<FIROrtho<float>>(
        room, kRangeDB, settings.sampleRate, settings.timeStretch, settings.timeLinearity,
        settings.timeAttenuation, -settings.lowDecay, -settings.highDecay);
  }
  if (settings.renderFast) return mFIR->FIR;
  AlignedVector<float> h = std::move(mFIR->FIR);
  mFIR.reset();
  return h;
}
