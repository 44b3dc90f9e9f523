// What a render does to the synthesised response before it becomes convolvers. Worker thread, or
// the caller's on a synchronous render; all of it allocates.
#pragma once

#include "numeric/AlignedVector.h"

// Runs the first k samples of h backwards into its start, k = (n - 1) * percent / 100; the length
// stays, so the last k samples fall off. percent is 0 to 100.
void ReverseHead(AlignedVector<float>& h, float percent);

// Convolves h with a low-cut kernel of the given number of taps at freq Hz, which makes h longer.
// Does nothing for a frequency below 1 Hz or above half the rate, or with no taps.
void CutLows(AlignedVector<float>& h, int sampleRate, int freq, int taps);

// Drops the given percentage of n samples from the front of h, but at most n - 1; n is the length
// that the response had when it was synthesised.
void TrimStart(AlignedVector<float>& h, int n, float percent);

// Divides h by its energy, the sum of its squared samples, where that is above 1.
void NormalizeEnergy(AlignedVector<float>& h);
