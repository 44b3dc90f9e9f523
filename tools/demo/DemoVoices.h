// The instruments of the demo sound: each adds one dry note to a stereo mix.
#pragma once
#include <cstdint>
#include <vector>

inline constexpr int kDemoRate = 44100;  // Hz

struct StereoMix {
  std::vector<double> left, right;
};

struct Note {
  double start;     // seconds
  double pitch;     // MIDI number; 0 for the instruments without pitch
  double velocity;  // 0 to 1, level and brightness
  double pan;       // -1 left to 1 right
};

// A plucked string: noise of one period, combed by the plucking position, circling through a
// two-point average and an allpass that tunes it (Karplus and Strong 1983, Jaffe and Smith 1983).
void AddPluck(StereoMix& mix, const Note& note);
// Hands: four grains of band-passed noise, the last one ringing longest.
void AddClap(StereoMix& mix, const Note& note);
// A muffled drum: a sine that falls from 130 to 52 Hz.
void AddKick(StereoMix& mix, const Note& note);
// A wooden block: three damped modes.
void AddBlock(StereoMix& mix, const Note& note);
