// Small records that pass between host adapter, base class and product. Tolmara uses the channel
// records; it has no use for transport and MIDI.
#pragma once

#include <cstdint>

#include "iplug/Containers.h"

// One legal configuration of channel counts.
struct ChannelIO {
  int mIn = 0;
  int mOut = 0;
};

struct InChannel {
  bool mConnected = false;
  double** mSrc = nullptr;       // this channel's entry of the input table
  HeapBuffer mScratchBuf{4096};  // one block of doubles
  HeapString mLabel;
};

struct OutChannel {
  bool mConnected = false;
  double** mDest = nullptr;      // this channel's entry of the output table
  float* mFDest = nullptr;       // the host's buffer while a single-precision call runs
  HeapBuffer mScratchBuf{4096};  // one block of doubles
  HeapString mLabel;
};

// The host's transport; a field that the host did not give keeps what the caller put there.
struct ITimeInfo {
  double mTempo = 120.0;     // beats per minute
  double mSamplePos = -1.0;  // samples
  double mPPQPos = -1.0;     // quarter notes
  double mLastBar = -1.0;    // quarter notes
  double mCycleStart = -1.0;
  double mCycleEnd = -1.0;
  int mNumerator = 4;
  int mDenominator = 4;
  bool mTransportIsRunning = false;
  bool mTransportLoopEnabled = false;
};

struct IMidiMsg {
  int mOffset = 0;  // samples into the block
  std::uint8_t mStatus = 0;
  std::uint8_t mData1 = 0;
  std::uint8_t mData2 = 0;
};

struct ISysEx {
  int mOffset = 0;  // samples into the block
  int mSize = 0;    // bytes
  const std::uint8_t* mData = nullptr;
};
