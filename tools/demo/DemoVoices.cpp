// The instruments of the demo sound: each adds one dry note to a stereo mix.
#include "tools/demo/DemoVoices.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

// White noise from -1 to 1, the same on every machine.
class Noise {
 public:
  explicit Noise(std::uint32_t seed) : mState(seed * 2654435761U + 1) {}
  double Next() {
    mState = mState * 1664525U + 1013904223U;
    return static_cast<double>(mState >> 8) / 8388608.0 - 1;
  }

 private:
  std::uint32_t mState;
};

// A two-pole band-pass with a peak of about 1 at `frequency`.
class BandPass {
 public:
  BandPass(double frequency, double width)
      : mRadius(std::exp(-std::numbers::pi * width / kDemoRate)),
        mTurn(2 * mRadius * std::cos(kTwoPi * frequency / kDemoRate)) {}
  double Next(double in) {
    const double out = (1 - mRadius) * (in - mIn2) + mTurn * mOut1 - mRadius * mRadius * mOut2;
    mIn2 = mIn1;
    mIn1 = in;
    mOut2 = mOut1;
    mOut1 = out;
    return out;
  }

 private:
  double mRadius, mTurn;
  double mIn1 = 0, mIn2 = 0, mOut1 = 0, mOut2 = 0;
};

double Frequency(double pitch) { return 440 * std::exp2((pitch - 69) / 12); }

std::size_t FramesOf(double seconds) { return static_cast<std::size_t>(seconds * kDemoRate); }

std::uint32_t SeedOf(const Note& note) {
  return static_cast<std::uint32_t>(note.start * 1000) + static_cast<std::uint32_t>(note.pitch);
}

// Adds `voice(time)` from the note's start on, with equal power over the pan, faded out over its
// last tenth of a second.
void AddVoice(StereoMix& mix, const Note& note, double seconds, auto voice) {
  const double angle = (note.pan + 1) * std::numbers::pi / 4;
  const std::size_t first = FramesOf(note.start);
  const std::size_t last = std::min(first + FramesOf(seconds), mix.left.size());
  for (std::size_t i = first; i < last; ++i) {
    const double time = static_cast<double>(i - first) / kDemoRate;
    const double sample = voice(time) * std::min(1.0, (seconds - time) / 0.1);
    mix.left[i] += sample * std::cos(angle);
    mix.right[i] += sample * std::sin(angle);
  }
}

// One period of plucking noise: duller for soft notes, without its mean, combed at a sixth of the
// string.
std::vector<double> Excitation(const Note& note, std::size_t period) {
  Noise noise(SeedOf(note));
  std::vector<double> raw(period);
  const double dull = 0.75 - 0.5 * note.velocity;
  double smooth = 0, mean = 0;
  for (double& x : raw) {
    smooth = dull * smooth + (1 - dull) * noise.Next();
    x = smooth;
    mean += x / static_cast<double>(period);
  }
  std::vector<double> combed(period);
  const std::size_t place = period / 6;
  for (std::size_t i = 0; i < period; ++i)
    combed[i] = (raw[i] - mean) - 0.9 * (raw[(i + period - place) % period] - mean);
  return combed;
}

}  // namespace

void AddPluck(StereoMix& mix, const Note& note) {
  const double length = kDemoRate / Frequency(note.pitch);
  // The average takes half a sample, the allpass from 0.1 to 1.1.
  const auto period = static_cast<std::size_t>(length - 0.6);
  const double rest = length - 0.5 - static_cast<double>(period);
  const double allpass = (1 - rest) / (1 + rest);
  const double seconds = 1.6;  // to a thousandth
  const double loss = std::pow(0.001, length / kDemoRate / seconds);

  std::vector<double> string = Excitation(note, period);
  std::size_t at = 0;
  double before = 0, allpassIn = 0, allpassOut = 0;
  const double level = 0.55 * note.velocity;
  AddVoice(mix, note, 2.4, [&](double) {
    const double now = string[at];
    const double averaged = loss * 0.5 * (now + before);
    before = now;
    allpassOut = allpass * (averaged - allpassOut) + allpassIn;
    allpassIn = averaged;
    string[at] = allpassOut;
    at = (at + 1) % period;
    return level * now;
  });
}

void AddClap(StereoMix& mix, const Note& note) {
  constexpr double kGrains[] = {0, 0.011, 0.021, 0.031};  // seconds
  Noise noise(SeedOf(note));
  BandPass body(1150, 900), edge(2600, 1800);
  AddVoice(mix, note, 0.35, [&](double t) {
    double envelope = 0;
    for (const double grain : kGrains) {
      const double fall = grain == kGrains[3] ? 0.042 : 0.0045;
      if (t >= grain) envelope = std::max(envelope, std::exp(-(t - grain) / fall));
    }
    const double x = noise.Next() * envelope;
    return note.velocity * (2.6 * body.Next(x) + 1.1 * edge.Next(x));
  });
}

void AddKick(StereoMix& mix, const Note& note) {
  double phase = 0;
  AddVoice(mix, note, 0.6, [&](double t) {
    phase += kTwoPi * (52 + 78 * std::exp(-t / 0.028)) / kDemoRate;
    const double attack = std::min(1.0, t / 0.001);
    return 0.85 * note.velocity * attack * std::exp(-t / 0.11) * std::sin(phase);
  });
}

void AddBlock(StereoMix& mix, const Note& note) {
  struct Mode {
    double frequency, level, fall;  // Hz, part, seconds
  };
  constexpr Mode kModes[] = {{890, 1, 0.028}, {1430, 0.55, 0.019}, {2870, 0.25, 0.008}};
  AddVoice(mix, note, 0.25, [&](double t) {
    double sum = 0;
    for (const Mode& mode : kModes)
      sum += mode.level * std::exp(-t / mode.fall) * std::sin(kTwoPi * mode.frequency * t);
    return 0.3 * note.velocity * sum;
  });
}
