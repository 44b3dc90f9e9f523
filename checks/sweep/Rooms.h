// The plug-in as the sweep looks into it: what it renders for a case, at which cost, and how that
// sounds.
#pragma once

#include <vector>

#include "checks/sweep/Case.h"
#include "tests/plugin/TolmaraProbe.h"

struct Rendered {
  AlignedVector<float> response;  // empty when no dimension is on
  double seconds = 0;             // of processor time
  double megabytes = 0;           // resident at most, beyond what was before
};

// One plug-in that renders case after case.
class Rooms {
 public:
  // Rendering "Fast" it keeps its tables from case to case; "Low Mem" makes each case anew.
  explicit Rooms(bool fast) : mFast(fast) {}

  Rendered Render(const Case& settings);
  // The stages of the last response, of a plug-in that renders "Fast".
  const FIROrtho<float>& Stages() const { return mProbe.Synthesiser(); }

 private:
  TolmaraProbe mProbe;
  bool mFast;
};

// What a plug-in that settled on the case makes of a single 1 on both channels.
TolmaraProbe::Sound SoundOfImpulse(const Case& settings, size_t count);
