// Passes sound on to a file and leaves off what has faded away at its end.
#pragma once
#include <cstdint>
#include <vector>

#include "tools/io/SoundFile.h"

// The echoes of a long, sparse response may be many seconds apart.
inline constexpr double kPatienceSeconds = 22;
// Effects that never fall silent are cut here.
inline constexpr double kLongestTailSeconds = 120;

// Takes an effect's output from its first frame, leaves off the delay, writes the body whole and of
// the tail only what is followed by something audible. Quiet frames wait in memory, for a bounded
// time, until a loud one comes or the sound has ended.
class TailTrimmer {
 public:
  // `delay`: frames to leave off first. `floor`: what counts as quiet, relative to the loudest
  // sample so far. `patience`: quiet frames after which the sound has ended; 0 writes no tail.
  TailTrimmer(SoundWriter& writer, int channels, std::int64_t delay, double floor,
              std::int64_t patience);

  // `body`: how many frames in all, from the first after the delay, belong to the file in any case.
  void Take(const double* interleaved, std::int64_t frames, std::int64_t body);

  bool Ended() const { return mQuiet >= mPatience; }
  std::int64_t Taken() const { return mTaken; }  // frames after the delay

 private:
  void TakeTail(const double* interleaved, std::int64_t frames);
  void Follow(const double* interleaved, std::int64_t frames);

  SoundWriter& mWriter;
  std::int64_t mChannels;
  std::int64_t mDelay;  // frames still to leave off
  double mFloor;
  std::int64_t mPatience;
  double mPeak = 0;
  std::int64_t mTaken = 0;
  std::int64_t mQuiet = 0;       // frames since the last audible one
  std::vector<double> mWaiting;  // quiet frames not written yet
};
