// Ring buffers of the by-pass delay.
#include "iplug/NChanDelay.h"

#include <algorithm>
#include <cstddef>
#include <utility>

void NChanDelay::SetDelayTime(int samples) {
  mDelay = std::max(samples, 0);
  mRing.resize(static_cast<std::size_t>(mDelay) * static_cast<std::size_t>(mNInChannels));
  Clear();
}

void NChanDelay::Clear() {
  std::fill(mRing.begin(), mRing.end(), 0.0);
  mPosition = 0;
}

void NChanDelay::ProcessBlock(double** inputs, double** outputs, int nFrames) {
  const int n = std::min(mNInChannels, mNOutChannels);
  int position = mPosition;
  for (int channel = 0; channel < n; ++channel) {
    const std::size_t ring = static_cast<std::size_t>(channel) * static_cast<std::size_t>(mDelay);
    position = mPosition;
    for (int i = 0; i < nFrames; ++i) {
      double sample = inputs[channel][i];
      if (mDelay > 0) {
        std::swap(sample, mRing[ring + static_cast<std::size_t>(position)]);
        if (++position == mDelay) position = 0;
      }
      outputs[channel][i] = sample;
    }
  }
  mPosition = position;
  for (int channel = n; channel < mNOutChannels; ++channel) {
    std::fill_n(outputs[channel], std::max(nFrames, 0), 0.0);
  }
}
