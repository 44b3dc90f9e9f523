// One point in the space of settings, and how it is written on a line.
#pragma once

#include <array>
#include <string>

#include "plugin/ParamTable.h"

struct Case {
  int rate;                               // Hz
  int block;                              // samples
  std::array<double, kNumParams> values;  // real values by parameter id
};

// The value that a parameter's display shows at a position, 0 to PositionsOf(id) - 1.
double ValueAt(int id, int position);
int PositionsOf(int id);

// Rate, block and every parameter that is not at its default: "44100 512 2=2.12 13=0".
std::string LineOf(const Case& settings);
// The same back; parameters not named have their defaults. Throws std::invalid_argument.
Case CaseOf(const std::string& line);
