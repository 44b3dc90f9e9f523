// Passes sound on to a file and leaves off what has faded away at its end.
#include "tools/io/TailTrimmer.h"

#include <algorithm>
#include <cmath>

TailTrimmer::TailTrimmer(SoundWriter& writer, int channels, std::int64_t delay, double floor,
                         std::int64_t patience)
    : mWriter(writer), mChannels(channels), mDelay(delay), mFloor(floor), mPatience(patience) {}

void TailTrimmer::Take(const double* interleaved, std::int64_t frames, std::int64_t body) {
  const std::int64_t left = std::min(mDelay, frames);
  mDelay -= left;
  interleaved += left * mChannels;
  frames -= left;
  const std::int64_t whole = std::clamp<std::int64_t>(body - mTaken, 0, frames);
  mTaken += frames;
  Follow(interleaved, whole);
  mWriter.Write(interleaved, whole);
  if (mPatience > 0) TakeTail(interleaved + whole * mChannels, frames - whole);
}

// Keeps peak and quiet count; does not decide which frames are written.
void TailTrimmer::Follow(const double* interleaved, std::int64_t frames) {
  for (std::int64_t i = 0; i < frames * mChannels; i += mChannels) {
    double level = std::abs(interleaved[i]);
    for (std::int64_t c = 1; c < mChannels; ++c)
      level = std::max(level, std::abs(interleaved[i + c]));
    mPeak = std::max(mPeak, level);
    mQuiet = level > mPeak * mFloor ? 0 : mQuiet + 1;
  }
}

void TailTrimmer::TakeTail(const double* interleaved, std::int64_t frames) {
  Follow(interleaved, frames);
  const std::int64_t audible = std::max<std::int64_t>(frames - mQuiet, 0);
  if (audible > 0) {
    mWriter.Write(mWaiting.data(), static_cast<std::int64_t>(mWaiting.size()) / mChannels);
    mWriter.Write(interleaved, audible);
    mWaiting.clear();
  }
  mWaiting.insert(mWaiting.end(), interleaved + audible * mChannels,
                  interleaved + frames * mChannels);
}
