// A lattice row above a previous row that seldom changes from cell to cell.
#pragma once

#include <vector>

#include "dsp/Shift.h"

// Where the cells 0 to S * S of row 0 differ from the cell before, which is at squares only; the
// first cell always counts.
std::vector<int> steps_of_row_0(const float* row, int S);

// Fills cells 0 to last of row with the sum of all shifts of previous, whose values are at least 0
// and whose steps are given; with fold, twice that plus previous. Between the cells where any
// source steps the sum is the same, so only those are summed, each in the order of the shifts.
// Worth it where the steps times the shifts are few beside the cells.
void fill_between_steps(float* row, const float* previous, const std::vector<int>& steps,
                        std::vector<Shift> shifts, bool fold, int last);
