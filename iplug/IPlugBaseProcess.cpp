// The way of a block: host pointers in, one double-precision call, host pointers out.
#include <algorithm>
#include <cstring>

#include "iplug/IPlugBase.h"

namespace {

double* Scratch(const HeapBuffer& buffer) { return static_cast<double*>(buffer.Get()); }

// Calls attach(channel, host pointer at `offset`) for the connected channels of the range. The
// host's array advances over those only.
template <typename Channel, typename Sample, typename Attach>
void ForConnected(const PointerList<Channel>& channels, int idx, int n, Sample** ppData, int offset,
                  Attach attach) {
  const int end = static_cast<int>(std::min<long>(long{idx} + n, channels.GetSize()));
  for (int i = std::max(idx, 0); i < end; ++i) {
    Channel* channel = channels.Get(i);
    if (!channel->mConnected) continue;
    Sample* data = *ppData++;
    attach(channel, data ? data + offset : nullptr);
  }
}

template <typename T>
void CopyOrSilence(T** inputs, T** outputs, int nFrames, int nIn, int nOut) {
  const std::size_t bytes = static_cast<std::size_t>(std::max(nFrames, 0)) * sizeof(T);
  for (int i = 0; i < nOut; ++i) {
    if (i < nIn) {
      std::memmove(outputs[i], inputs[i], bytes);
    } else {
      std::memset(outputs[i], 0, bytes);
    }
  }
}

}  // namespace

void IPlugBase::ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) {
  CopyOrSilence(inputs, outputs, nFrames, NInChannels(), NOutChannels());
}

void IPlugBase::ProcessSingleReplacing(float** inputs, float** outputs, int nFrames) {
  CopyOrSilence(inputs, outputs, nFrames, NInChannels(), NOutChannels());
}

void IPlugBase::AttachInputBuffers(int idx, int n, double** ppData, int nFrames, int offset) {
  ForConnected(mInChannels, idx, n, ppData, offset, [=](InChannel* channel, double* data) {
    double* scratch = Scratch(channel->mScratchBuf);
    if (!data) std::fill_n(scratch, std::max(nFrames, 0), 0.0);
    *channel->mSrc = data ? data : scratch;
  });
}

void IPlugBase::AttachInputBuffers(int idx, int n, float** ppData, int nFrames, int offset) {
  ForConnected(mInChannels, idx, n, ppData, offset, [=](InChannel* channel, const float* data) {
    double* scratch = Scratch(channel->mScratchBuf);
    for (int i = 0; i < nFrames; ++i) scratch[i] = data ? static_cast<double>(data[i]) : 0.0;
    *channel->mSrc = scratch;
  });
}

void IPlugBase::AttachOutputBuffers(int idx, int n, double** ppData, int offset) {
  ForConnected(mOutChannels, idx, n, ppData, offset, [](OutChannel* channel, double* data) {
    *channel->mDest = data ? data : Scratch(channel->mScratchBuf);
  });
}

void IPlugBase::AttachOutputBuffers(int idx, int n, float** ppData, int offset) {
  ForConnected(mOutChannels, idx, n, ppData, offset, [](OutChannel* channel, float* data) {
    *channel->mDest = Scratch(channel->mScratchBuf);
    channel->mFDest = data;
  });
}

void IPlugBase::ProcessBuffers(double, int nFrames) {
  ProcessDoubleReplacing(mInData.data(), mOutData.data(), nFrames);
}

void IPlugBase::ProcessBuffers(float, int nFrames) {
  ProcessBuffers(0.0, nFrames);
  OutputsToFloat(nFrames, false);
}

void IPlugBase::ProcessBuffersAccumulating(float, int nFrames) {
  ProcessBuffers(0.0, nFrames);
  OutputsToFloat(nFrames, true);
}

void IPlugBase::OutputsToFloat(int nFrames, bool accumulate) {
  for (const OutChannel* channel : mOutChannels) {
    if (!channel->mConnected || !channel->mFDest) continue;
    const double* from = *channel->mDest;
    float* to = channel->mFDest;
    if (accumulate) {
      for (int i = 0; i < nFrames; ++i) to[i] += static_cast<float>(from[i]);
    } else {
      for (int i = 0; i < nFrames; ++i) to[i] = static_cast<float>(from[i]);
    }
  }
}

void IPlugBase::PassThroughBuffers(double, int nFrames) {
  if (mLatency != 0 && mDelay) {
    mDelay->ProcessBlock(mInData.data(), mOutData.data(), nFrames);
  } else {
    CopyOrSilence(mInData.data(), mOutData.data(), nFrames, NInChannels(), NOutChannels());
  }
}

void IPlugBase::PassThroughBuffers(float, int nFrames) {
  PassThroughBuffers(0.0, nFrames);
  OutputsToFloat(nFrames, false);
}
