// From a room of orthogonal axes and its time and decay settings to a mono impulse response.
#pragma once

#include "dsp/GaussCircle.h"
#include "numeric/AlignedVector.h"

// One axis of a room.
template <class T>
struct DimProperties {
  T size;    // metres, used truncated, at least 1
  T offset;  // metres from the lattice origin, used truncated, 0 to half the size
  T refl;    // percent of amplitude kept by one reflection, limited to 0 to 99

  bool operator==(const DimProperties&) const = default;
};

// Builds a response in four stages: the lattice table, the mapping of its counts onto time, the
// decay, the finish. update runs only the stages whose inputs changed, by exact comparison, so a
// kept object answers a changed decay without counting the lattice again. Any float is accepted in
// any setting: conversions to integers saturate, and the length is limited to 2^24 samples.
// Everything allocates; one thread at a time, which in the plug-in is the worker.
template <class T>
class FIROrtho {
 public:
  FIROrtho() = default;
  FIROrtho(AlignedVector<DimProperties<T>>& dims, float dB_range, int sample_rate,
           float time_stretch, float time_linearity, float time_attenuation, float decay_low,
           float decay_high);

  // Brings FIR up to date. dims has at least one entry; dB_range is the positive level range in dB
  // that sets the radius; the decays are in dB per second at 0 Hz and at the Nyquist frequency,
  // negative for a decay.
  void update(AlignedVector<DimProperties<T>>& dims, float dB_range, int sample_rate,
              float time_stretch, float time_linearity, float time_attenuation, float decay_low,
              float decay_high);

  // Store the properties of one stage and tell whether any changed, for callers that run the
  // stages themselves.
  bool update_dim_props(AlignedVector<DimProperties<T>>& dims, float dB_range);
  bool update_time_props(int sample_rate, float time_stretch, float time_linearity,
                         float time_attenuation);
  bool update_EQ(float decay_low, float decay_high);

  // The stages, in their order.
  void update_Gauss_volume();    // dims, dB_range -> radius, volume
  void update_FIR_time_props();  // volume, time properties -> FIR_time, FIR
  void update_FIR_EQ();          // FIR_time, EQ_taps -> FIR_EQ, FIR
  void update_FIR_finalize();    // FIR -> peak at most 1, trimmed, positive start

  // Cuts samples of magnitude up to threshold off either end of x and negates x if it then begins
  // negative; if nothing is left, x becomes a unit impulse. Returns the samples cut at the front.
  int trim_FIR(AlignedVector<T>& x, float threshold, bool trim_front, bool trim_back);

  // Closed forms between level, distance and time. refl is a linear factor, sizes and distances
  // are in metres, g is the factor of the attenuation exponent.

  // Distance at which reflections alone have taken dB off.
  float dB_to_radius_refl(float dB, float size, float refl) const;
  // Distance at which the attenuation divisor reaches dB; the dimension count is the object's.
  float dB_to_radius_attenuation(float dB, int D, float g) const;
  // What the amplitude is divided by at a distance in D dimensions; below 0 the same as at 0.
  float attenuation_divisor_at_dist(float dist, int D, float g) const;
  // Factor left by the reflections up to a distance.
  float refl_at_dist(float dist, float refl, float size) const;
  // Whole reflections up to a distance.
  int num_refl_at_dist(float dist, float size) const;
  // Position on the curve of a quarter of the p-norm's circle of radius N, and its inverse.
  float p_norm_sampling(float p, float N, float N_pow_p, float k) const;
  double p_norm_sampling_double(double p, double N, double N_pow_p, double k) const;
  float p_norm_sampling_inverse(float p, float N, float N_pow_p, float x) const;

  AlignedVector<T> FIR;                  // the finished response
  int FIR_size = 0;                      // samples of FIR
  int FIR_trim_offset = 0;               // samples the last trim cut at the front
  AlignedVector<DimProperties<T>> dims;  // copy of the room
  int num_dims = 0;                      // entries of dims
  int radius = 0;                        // largest distance of the lattice count, metres
  float dB_range = 0;                    // level range that sets the radius
  int sample_rate = 0;                   // samples per second
  float time_stretch = 0;                // divides the speed of sound
  float time_linearity = 0;              // num_dims * ln(norm_p)
  float time_attenuation = 0;            // ln(g)
  float decay_low = 0;                   // dB per second at 0 Hz
  float decay_high = 0;                  // dB per second at the Nyquist frequency
  AlignedVector<T> EQ_taps;              // the two taps of the per-sample filter
  double norm_p = 0;                     // exponent of the time curve
  double norm_N = 0;                     // num_samples
  double norm_N_pow_p = 0;               // norm_N to the power norm_p
  GaussCircle<T> volume;                 // the lattice table
  AlignedVector<T> FIR_time;             // num_samples, the response before the decay
  AlignedVector<T> FIR_EQ;               // 2 * num_samples, the response after it
  float speed = 0;                       // stretched speed of sound, metres per second
  float dist_per_sample = 0;             // metres
  int num_samples = 0;                   // length of FIR_time

 private:
  void map_time();
  // Of samples first to first + n - 1: their distances, and what these divide the amplitude by.
  void map_distances(int first, T* r, int n) const;
  void map_divisors(const T* r, float g, T* divisors, int n) const;
};
