// The four stereo stages behind the panner: phase filter, width, gain, mix. Each has a plain loop
// for a setting that stood still and a ramp over one block for one that moved. Audio thread;
// nothing here allocates. All blocks are of B samples and are worked in place.
#pragma once

// One-pole low-pass on one of the two channels.
struct PhaseFilterState {
  float stateLeft = 0.0f;
  float stateRight = 0.0f;
  float value = 0.0f;     // setting of the last block: the parameter halved, -0.5 to 0.5
  float coefLeft = 1.0f;  // coefficients of the last block; 1 passes the signal
  float coefRight = 1.0f;

  // Takes the setting (the parameter, -1 to 1) with no ramp and empties the memories.
  void Settle(float parameter);
};

// Mid and side coefficients of a width setting, -1 to 1.
struct WidthCoefs {
  float mid, side;
};
WidthCoefs WidthCoefsOf(float midSide);

void ApplyPhaseFilter(PhaseFilterState& state, float parameter, float* left, float* right, int B);
// The three references are the setting and coefficients of the last block and are updated.
void ApplyWidth(float& prevMidSide, float& prevMidCoef, float& prevSideCoef, float midSide,
                float* left, float* right, int B);
// gain and prevGain are linear; prevGain becomes gain.
void ApplyGain(float& prevGain, float gain, float* left, float* right, int B);
// mix 0 is dry, 1 is wet; the result stands in wet. prevMix is stored by the caller, as two
// channels share it.
void ApplyMix(float prevMix, float mix, float* wet, const float* dry, int B);
