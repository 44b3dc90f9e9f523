// Free functions that shape a whole response at once: levels, convolution, the low-cut kernel and
// the decay whose rate depends on frequency.
//
// Nothing here has shared state; the functions may run on any thread, the level conversions on the
// audio thread too. All others allocate.
#pragma once

#include "numeric/AlignedVector.h"
#include "numeric/FFTWrap.h"

// Linear amplitude of a level, 20 dB per decade.
float dB_to_mag(float dB);
// Level of a linear amplitude; 0 gives minus infinity.
float mag_to_dB(float mag);

// How a convolution is computed.
enum class ComputeDomain : int {
  TIME_DOMAIN = 0,       // direct double loop, ignores the powers
  FREQUENCY_DOMAIN = 1,  // product of spectra
};

// c = a convolved a_power times with b convolved b_power times, resized to
// (size(a) - 1) * a_power + (size(b) - 1) * b_power + 1 samples; in the time domain both powers
// act as 1. Any other domain leaves c as it is. c must be neither a nor b.
void convolve(const AlignedVector<float>& a, const AlignedVector<float>& b, AlignedVector<float>& c,
              ComputeDomain domain, int a_power, int b_power);
// The same with powers of 1, in the frequency domain if both a and c, as it stands at the call,
// are longer than 32 samples.
void convolve(const AlignedVector<float>& a, const AlignedVector<float>& b,
              AlignedVector<float>& c);

// X = spectrum of x, cut or extended by zeros to n samples: n / 2 + 1 bins. n must be above 0.
void FIR_FFT(const AlignedVector<float>& x, AlignedVector<complex>& X, int n);

// Raises each of the bins values to a real exponent, in double precision from the polar form; a
// zero bin stays exactly 0 under an exponent above 0.
void raise_spectrum(complex* X, int bins, double exponent);

// h = high-pass kernel of n taps by spectral inversion of a Hann-windowed sinc. cutoff is the cut
// frequency divided by the sample rate. n below 1 gives an empty kernel; for n = 1 the tap is not
// a number.
void filter_lowcut_sinc_Hann(AlignedVector<float>& h, float cutoff, int n);

// taps = the two taps whose gain is dB_0 at 0 Hz and dB_1 at the Nyquist frequency.
void FIR_2_taps_fit_ends(float dB_0, float dB_1, AlignedVector<float>& taps);

// The decay: position m of the result has been through the filter a + b z^-1 m + 1 times. x has n
// samples, y is replaced by 2 * n. This is the plain form and the definition, quadratic in n.
void conv_exp_2tap(const AlignedVector<float>& x, float a, float b, AlignedVector<float>& y);
// The same for any length by halving, each half with a transform of its own.
void conv_exp_2tap_recursive(const AlignedVector<float>& x, float a, float b,
                             AlignedVector<float>& y);
// The same in O(n log^2 n), over the next power of two P. Where n is none, positions from n on
// have been through P passes instead of n.
void conv_exp_2tap_recursive_pow2(const AlignedVector<float>& x, float a, float b,
                                  AlignedVector<float>& y);

// The recursion behind the fast form on fresh arrays. x has P >> level samples; ffts and spectra
// hold, for each level, the transform of that length and the spectrum of the filter to the power
// of half that length, down to where the length is 32 or less.
void _conv_exp_2tap_recursive_pow2(const AlignedVector<float>& x, float a, float b,
                                   AlignedVector<float>& y, int level,
                                   AlignedVector<FFTWrap<float>*>& ffts,
                                   AlignedVector<AlignedVector<complex>*>& spectra);
// The same without allocation. n is a power of two; x has n samples and is overwritten, y has
// 2 * n, fft_in at least n, fft_out at least n / 2 + 1, work_a n, work_b 2 * n; work_c is not used.
void _conv_exp_2tap_recursive_pow2_inplace(float* x, float a, float b, float* y,
                                           AlignedVector<float>& fft_in,
                                           AlignedVector<complex>& fft_out, float* work_a,
                                           float* work_b, float* work_c, int level,
                                           AlignedVector<FFTWrap<float>*>& ffts,
                                           AlignedVector<AlignedVector<complex>*>& spectra, int n);
