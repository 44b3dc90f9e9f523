// Slow, plain forms of the lattice, the decay and the whole response, from their definitions.
#pragma once

#include <vector>

#include "dsp/FIROrtho.h"
#include "numeric/AlignedVector.h"

namespace plain {

struct Lattice {
  int S;
  AlignedVector<int> sizes, offsets;
  AlignedVector<float> weights;

  int axes() const { return static_cast<int>(sizes.size()); }
};

// Row d of the cumulative count, S * S + 1 cells, by visiting every image once.
std::vector<double> counts(const Lattice& lattice, int d);

// x after the decay, twice its length: pass k filters what lies from position k on by a + b z^-1
// and then leaves position k alone.
std::vector<double> decayed(const std::vector<double>& x, double a, double b);

struct Settings {
  AlignedVector<DimProperties<float>> room;
  float dB_range;
  int sample_rate;
  float stretch, linearity, attenuation;
  float decay_low, decay_high;
};

// The signed, attenuated arrivals of a room on the curved time axis, before the decay.
std::vector<double> before_decay(const Settings& settings);

// The finished response of a room whose sizes and offsets are whole numbers in range.
std::vector<double> response(const Settings& settings);

}  // namespace plain
