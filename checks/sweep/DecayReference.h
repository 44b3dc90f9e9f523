// The decay of a response from its definition, one sample at a time.
#pragma once

#include "dsp/FIROrtho.h"

// The gains per sample at 0 Hz and at half the rate that decays in dB per second ask for, and the
// two taps whose response joins them.
struct DecayTaps {
  DecayTaps(double low_dB, double high_dB, double rate);

  double low, high;
  double a, b;
};

// Sample m of x after the decay, in double precision: a times what m passes of a + b z^-1 make of
// x, summed where the binomial weights of the passes do not vanish.
double DecayedAt(const AlignedVector<float>& x, size_t m, const DecayTaps& taps);
