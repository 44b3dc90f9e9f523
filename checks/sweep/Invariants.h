// What holds for the response and the sound of every setting, whatever it is.
#pragma once

#include <string>
#include <vector>

#include "checks/sweep/Rooms.h"

struct Finding {
  std::string invariant;
  std::string detail;
};
using Findings = std::vector<Finding>;

// Of a room's response, with its stages:
//   finite    no stage has a sample that is NaN or infinite
//   arrivals  before the decay there are images, in two samples or more unless the time curve
//             itself gathers the nearest and the farthest in one
//   vanished  a response of one sample, where none is cut off, means that the decay took all others
//             120 dB down
//   length    at most 20 s, the longest room at the longest stretch, and the taps of the low cut
//   peak      at most 1 as synthesised; after the low cut, which can raise a peak, at most the sum
//             of its taps' magnitudes
//   energy    at most 1 when normalised, but for the rounding of the single-precision sum
//   decay     sampled over its length, the decayed signal is what the two decays in dB per second
//             make of the signal before. The slope of the response itself is no invariant: in rooms
//             of several dimensions images lie the denser the farther they are.
void CheckResponse(const Case& settings, const Rendered& rendered, const FIROrtho<float>& stages,
                   Findings& findings);

// cost: processor time and memory of a response made anew stay below bounds in proportion to the
// table and the length. Counts in optimised builds without sanitizers.
void CheckCost(const Case& settings, const Rendered& rendered, const FIROrtho<float>& stages,
               Findings& findings);

// same: a plug-in that keeps its tables between cases, and one that makes each anew, give the same
// bits.
void CheckSame(const Rendered& kept, const Rendered& anew, Findings& findings);

// sound: a single 1 on both channels comes out of the plug-in one block later as the response,
// delayed, panned, filtered, widened, amplified and mixed as the settings say.
void CheckSound(const Case& settings, const AlignedVector<float>& response, Findings& findings);

// No finding, and yet not heard as a room: the time curve gathers all images in one sample, or the
// decay leaves only one audible.
bool IsOneSample(const FIROrtho<float>& stages);
