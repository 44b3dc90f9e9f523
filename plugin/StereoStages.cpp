// The stereo stages and their ramps.
#include "plugin/StereoStages.h"

#include <cmath>

namespace {

struct PhaseCoefs {
  float left, right;
};

PhaseCoefs PhaseCoefsOf(float value) {
  const double magnitude = std::fabs(static_cast<double>(value));
  const float k = static_cast<float>((1.0 - magnitude) / (1.0 + magnitude));
  return value < 0.0f ? PhaseCoefs{1.0f, k} : PhaseCoefs{k, 1.0f};
}

// Position within the block, 0 to just below 1.
float Fraction(int i, int B) { return static_cast<float>(i) / static_cast<float>(B); }

void OnePole(float& memory, float c, float* x, int B) {
  float z = memory;
  for (int i = 0; i < B; ++i) {
    z = z + c * (x[i] - z);
    x[i] = z;
  }
  memory = z;
}

void OnePoleRamp(float& memory, float from, float to, float* x, int B) {
  float z = memory;
  for (int i = 0; i < B; ++i) {
    const float c = from + (to - from) * Fraction(i, B);
    z = z + c * (x[i] - z);
    x[i] = z;
  }
  memory = z;
}

void Widen(float m, float d, float& left, float& right) {
  const float mid = m * (left + right);
  const float side = d * (right - left);
  left = mid - side;
  right = side + mid;
}

// A memory that is not finite would never recover, whatever comes after.
void DropNonFinite(float& memory) {
  if (!std::isfinite(memory)) memory = 0.0f;
}

}  // namespace

void PhaseFilterState::Settle(float parameter) {
  value = parameter * 0.5f;
  const PhaseCoefs c = PhaseCoefsOf(value);
  coefLeft = c.left;
  coefRight = c.right;
  stateLeft = 0.0f;
  stateRight = 0.0f;
}

WidthCoefs WidthCoefsOf(float midSide) {
  const double s = midSide;
  return {static_cast<float>((1.0 - s) / 2.0), static_cast<float>((1.0 + s) / 2.0)};
}

void ApplyPhaseFilter(PhaseFilterState& state, float parameter, float* left, float* right, int B) {
  const float value = parameter * 0.5f;
  if (value == state.value) {
    OnePole(state.stateLeft, state.coefLeft, left, B);
    OnePole(state.stateRight, state.coefRight, right, B);
  } else {
    const PhaseCoefs c = PhaseCoefsOf(value);
    OnePoleRamp(state.stateLeft, state.coefLeft, c.left, left, B);
    OnePoleRamp(state.stateRight, state.coefRight, c.right, right, B);
    state.value = value;
    state.coefLeft = c.left;
    state.coefRight = c.right;
  }
  DropNonFinite(state.stateLeft);
  DropNonFinite(state.stateRight);
}

void ApplyWidth(float& prevMidSide, float& prevMidCoef, float& prevSideCoef, float midSide,
                float* left, float* right, int B) {
  if (midSide == prevMidSide) {
    const float m = prevMidCoef;
    const float d = prevSideCoef;
    for (int i = 0; i < B; ++i) Widen(m, d, left[i], right[i]);
    return;
  }
  const WidthCoefs c = WidthCoefsOf(midSide);
  for (int i = 0; i < B; ++i) {
    const float t = Fraction(i, B);
    Widen(prevMidCoef + (c.mid - prevMidCoef) * t, prevSideCoef + (c.side - prevSideCoef) * t,
          left[i], right[i]);
  }
  prevMidSide = midSide;
  prevMidCoef = c.mid;
  prevSideCoef = c.side;
}

void ApplyGain(float& prevGain, float gain, float* left, float* right, int B) {
  if (gain == prevGain) {
    for (int i = 0; i < B; ++i) left[i] *= gain;
    for (int i = 0; i < B; ++i) right[i] *= gain;
    return;
  }
  const float change = gain - prevGain;
  for (int i = 0; i < B; ++i) {
    const float g = prevGain + static_cast<float>(i) * change / static_cast<float>(B);
    left[i] *= g;
    right[i] *= g;
  }
  prevGain = gain;
}

void ApplyMix(float prevMix, float mix, float* wet, const float* dry, int B) {
  if (mix == prevMix) {
    for (int i = 0; i < B; ++i) wet[i] = (wet[i] - dry[i]) * mix + dry[i];
    return;
  }
  for (int i = 0; i < B; ++i) {
    const float t = Fraction(i, B);
    wet[i] = (dry[i] * (1.0f - mix) + wet[i] * mix) * t +
             (dry[i] * (1.0f - prevMix) + wet[i] * prevMix) * (1.0f - t);
  }
}
