// The audio path: Reset and the block call.
#include <algorithm>
#include <cstdint>
#include <limits>

#include "dsp/FIRFunctions.h"
#include "numeric/Convert.h"
#include "plugin/Tolmara.h"

namespace {

constexpr int kMaxSampleRate = 768000;  // a rate beyond this is no rate
constexpr int kMaxDelay = 1050;         // ms: the longest Time Delay and the longest Haas

// Sum of two delays in ms; a host may send any number.
int AddDelays(std::int64_t a, std::int64_t b) {
  constexpr std::int64_t limit = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(a + b, -limit, limit));
}

void Zero(AlignedVector<float>& x) { std::fill(x.begin(), x.end(), 0.0f); }

}  // namespace

int Tolmara::LeftDelay() const { return AddDelays(std::max(mStereoHaas, 0), mTimeDelay); }
int Tolmara::RightDelay() const {
  return AddDelays(std::max<std::int64_t>(-static_cast<std::int64_t>(mStereoHaas), 0), mTimeDelay);
}
float Tolmara::LeftGain() const { return std::min(-mPan, 0.0f); }
float Tolmara::RightGain() const { return std::min(mPan, 0.0f); }

void Tolmara::ReadHostFormat() {
  const int rate = saturate_to_int(GetSampleRate());
  mSampleRate = rate > 0 && rate <= kMaxSampleRate ? rate : kFallbackSampleRate;
  mBlockSize = GetBlockSize() > 0 ? GetBlockSize() : kFallbackBlockSize;
}

void Tolmara::AllocateBuffers(int blockSize) {
  mRingLeft.Allocate(blockSize);
  mRingRight.Allocate(blockSize);
  for (AlignedVector<float>* block :
       {&mBlockDryLeft, &mBlockDryRight, &mBlockWetLeft, &mBlockWetRight}) {
    block->assign(static_cast<size_t>(blockSize), 0.0f);
  }
}

void Tolmara::DestroyPanner() { mPanner.reset(); }

void Tolmara::BuildPanner() {
  mPanner = std::make_unique<StereoPanner<float>>(mSampleRate, mBlockSize, kMaxDelay, LeftDelay(),
                                                  RightDelay(), LeftGain(), RightGain());
}

void Tolmara::SettleStages() {
  mPrevMidSide = mStereoMidSide;
  const WidthCoefs width = WidthCoefsOf(mStereoMidSide);
  mPrevMidCoef = width.mid;
  mPrevSideCoef = width.side;
  mPhaseFilter.Settle(mStereoLeftRightPhase);
  mPrevMix = mMix;
  mPrevGain = dB_to_mag(mGain);
}

void Tolmara::Reset() {
  const PlugLock::Guard lock(mLock);
  const int oldSampleRate = mSampleRate;
  const int oldBlockSize = mBlockSize;
  ReadHostFormat();
  if (mSampleRate != oldSampleRate || mBlockSize != oldBlockSize) {
    AllocateBuffers(mBlockSize);
    DestroyPanner();
    BuildPanner();
    if (mWorker.joinable()) mWorker.join();
    // A pair made for another block cannot sound any more, and the new one may need its memory.
    if (mBlockSize != oldBlockSize) mConvActive.clear();
    RenderNow();
  }
  for (ChannelRing* ring : {&mRingLeft, &mRingRight}) ring->Clear();
  SettleStages();
  if (mPanner) mPanner->flush();
  if (mConvActive.size() == 2) {
    for (const auto& convolver : mConvActive) {
      if (convolver) convolver->flush();
    }
  }
  for (AlignedVector<float>* block :
       {&mBlockDryLeft, &mBlockDryRight, &mBlockWetLeft, &mBlockWetRight}) {
    Zero(*block);
  }
}

void Tolmara::ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) {
  const PlugLock::Guard lock(mLock);
  ServiceWorker();

  mRingLeft.WriteInput(inputs[0], nFrames);
  mRingRight.WriteInput(inputs[1], nFrames);
  const bool hasBlock = mRingLeft.HasBlock(nFrames);  // both rings move in lockstep
  if (hasBlock) {
    mRingLeft.TakeBlock(mBlockDryLeft.data());
    mRingRight.TakeBlock(mBlockDryRight.data());
    Convolve();
    mPanner->process_left(LeftDelay(), LeftGain(), mBlockWetLeft, mBlockWetLeft);
    mPanner->process_right(RightDelay(), RightGain(), mBlockWetRight, mBlockWetRight);
    ProcessWet();
    mRingLeft.PutBlock(mBlockWetLeft.data());
    mRingRight.PutBlock(mBlockWetRight.data());
  }
  mRingLeft.ReadOutput(outputs[0], nFrames);
  mRingRight.ReadOutput(outputs[1], nFrames);
}

void Tolmara::Convolve() {
  if (mConvActive.size() == 2 && mConvActive[0]) {
    Convolver::process_pair(*mConvActive[0], *mConvActive[1], mBlockDryLeft, mBlockWetLeft,
                            mBlockDryRight, mBlockWetRight);
  } else {
    std::copy(mBlockDryLeft.begin(), mBlockDryLeft.end(), mBlockWetLeft.begin());
    std::copy(mBlockDryRight.begin(), mBlockDryRight.end(), mBlockWetRight.begin());
  }
}

void Tolmara::ProcessWet() {
  float* left = mBlockWetLeft.data();
  float* right = mBlockWetRight.data();
  ApplyPhaseFilter(mPhaseFilter, mStereoLeftRightPhase, left, right, mBlockSize);
  ApplyWidth(mPrevMidSide, mPrevMidCoef, mPrevSideCoef, mStereoMidSide, left, right, mBlockSize);
  ApplyGain(mPrevGain, dB_to_mag(mGain), left, right, mBlockSize);
  ApplyMix(mPrevMix, mMix, left, mBlockDryLeft.data(), mBlockSize);
  ApplyMix(mPrevMix, mMix, right, mBlockDryRight.data(), mBlockSize);
  mPrevMix = mMix;
}
