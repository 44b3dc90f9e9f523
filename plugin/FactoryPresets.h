// The factory presets: the room, time shape and decays of each; all else they have in common.
#pragma once

#include <array>

#include "plugin/ParamTable.h"

constexpr int kNumPresets = 28;

// All 46 real values of the preset in a slot, by parameter id.
std::array<double, kNumParams> FactoryPresetValues(int slot);
const char* FactoryPresetName(int slot);
