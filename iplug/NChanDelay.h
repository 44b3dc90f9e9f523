// A delay of whole samples for several channels. Tolmara makes none: it reports no latency, so it
// has no by-pass to delay.
#pragma once

#include <vector>

// Holds back each channel by a settable number of samples. SetDelayTime allocates; ProcessBlock
// does not. Input and output of a channel may be the same array.
class NChanDelay {
 public:
  NChanDelay(int nInChannels, int nOutChannels)
      : mNInChannels(nInChannels), mNOutChannels(nOutChannels) {}

  void SetDelayTime(int samples);
  void Clear();
  // Outputs beyond the inputs are silent.
  void ProcessBlock(double** inputs, double** outputs, int nFrames);

 private:
  int mNInChannels;
  int mNOutChannels;
  int mDelay = 0;             // samples
  int mPosition = 0;          // next sample to read and write in every channel's ring
  std::vector<double> mRing;  // one ring of mDelay samples after the other
};
