// A plug-in object with a view of the hand-over between its audio path and its worker.
#pragma once

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "plugin/FlushToZero.h"
#include "plugin/Tolmara.h"

class TolmaraProbe {
 public:
  explicit TolmaraProbe(int blockSize = 64, double sampleRate = 44100)
      : mPlugin(std::make_unique<Tolmara>([](AEffect*, std::int32_t, std::int32_t, VstIntPtr, void*,
                                             float) -> VstIntPtr { return 0; })) {
    SetSmallRoom();
    SetFormat(blockSize, sampleRate);
    Settle();
  }

  Tolmara& Plugin() { return *mPlugin; }
  bool Dirty() const { return mPlugin->mFirDirty; }
  bool Idle() const { return mPlugin->LoadWorkerState().mWorkerIdle; }
  bool SwapPending() const { return mPlugin->LoadWorkerState().mSwapPending; }
  bool KeepsSynthesiser() const { return mPlugin->mFIR != nullptr; }
  const FIROrtho<float>& Synthesiser() const { return *mPlugin->mFIR; }
  const AlignedVector<float>& Synthesised() const { return Synthesiser().FIR; }
  const void* Active(size_t channel) const { return mPlugin->mConvActive.at(channel).get(); }
  size_t NextCount() const { return mPlugin->mConvNext.size(); }
  const void* Next(size_t channel) const { return mPlugin->mConvNext.at(channel).get(); }
  int RingPosition() const { return mPlugin->mRingLeft.writePos; }
  int LowCutTaps() const { return mPlugin->mLowCutTaps; }

  // As a host's change: the real value, then the announcement.
  void Set(int id, double value) {
    mPlugin->GetParam(id)->Set(value);
    mPlugin->OnParamChange(id);
  }
  void SetFormat(int blockSize, double sampleRate) {
    mPlugin->SetSampleRate(sampleRate);
    mPlugin->SetBlockSize(blockSize);
    mPlugin->Reset();
  }
  // One short dimension, so that renders are quick.
  void SetSmallRoom() {
    for (int d = 0; d < kNumDims; ++d) Set(DimParam(d, kDimEnabled), d == 0);
    Set(DimParam(0, kDimSize), 3);
    Set(DimParam(0, kDimRefl), -6);
  }
  void EmptyRoom() {
    for (int d = 0; d < kNumDims; ++d) Set(DimParam(d, kDimEnabled), 0);
  }

  // Runs `frames` samples; the outputs replace the inputs.
  void Process(std::vector<double>& left, std::vector<double>& right, int frames, size_t at = 0) {
    double* channels[] = {left.data() + at, right.data() + at};
    mPlugin->ProcessDoubleReplacing(channels, channels, frames);
  }
  void SilentBlock() {
    std::vector<double> left(BlockSize()), right(BlockSize());
    Process(left, right, static_cast<int>(BlockSize()));
  }
  void WaitForWorker() const {
    while (!Idle()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  // Runs silent blocks until the last settings sound.
  void Settle() {
    do {
      SilentBlock();
      WaitForWorker();
    } while (Dirty() || SwapPending());
  }
  // The response of the settings at hand at a rate in Hz, on this thread; nothing sounds of it.
  AlignedVector<float> Render(int sampleRate) {
    const ScopedFlushToZero flushToZero;
    auto settings = mPlugin->CurrentSettings();
    settings.sampleRate = sampleRate;
    return mPlugin->Response(settings);
  }
  struct Sound {
    std::vector<double> left, right;
  };
  // What comes out for an input on both channels, out of silence, without the delay of one block.
  Sound Play(const std::vector<double>& input) {
    mPlugin->Reset();
    Sound sound{input, input};
    for (auto* channel : {&sound.left, &sound.right})
      channel->resize(input.size() + 2 * BlockSize());
    for (size_t at = 0; at + BlockSize() <= sound.left.size(); at += BlockSize()) {
      Process(sound.left, sound.right, static_cast<int>(BlockSize()), at);
    }
    for (auto* channel : {&sound.left, &sound.right}) {
      channel->erase(channel->begin(), channel->begin() + static_cast<std::ptrdiff_t>(BlockSize()));
      channel->resize(input.size());
    }
    return sound;
  }
  // What comes out for a single 1 at the input, without the delay of one block. Transforms round by
  // where in a partition the 1 falls, so two runs agree to the last bit only on convolvers that
  // have run equally long.
  std::vector<double> Response(size_t count) {
    std::vector<double> impulse(count);
    impulse[0] = 1.0;
    return Play(impulse).left;
  }
  size_t BlockSize() const { return static_cast<size_t>(mPlugin->mBlockSize); }

 private:
  std::unique_ptr<Tolmara> mPlugin;
};
