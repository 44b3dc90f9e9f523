// The variants of the transforms, one per instruction set, and the choice between them.
#pragma once

#include "numeric/dft/Spec.h"

namespace dft {

// One variant. Work memory is aligned to a line and of WorkLayout's size; nothing is checked.
struct Engine {
  int lanes;   // of its widest vector
  int copies;  // of each twiddle of lane transforms
  void (*forward)(const Spec& spec, const float* src, float* dst, float* work);
  void (*inverse)(const Spec& spec, const float* src, float* dst, float* work);
  // The core plan's complex transform of a planar array, in place.
  void (*forward_core)(const Spec& spec, float* re, float* im, float* work);
};

// By jump index. Several indices share a variant.
constexpr int kEngines = 5;
extern const Engine* const engines[kEngines];

// The engine of the jump index, which the first call of all sets. Any thread, no lock.
const Engine& engine();

// The highest index that this processor can run: 4 with AVX-512, 3 with AVX2, 2 with AVX, 1 with
// SSE4.2, else 0.
int best_engine();
bool is_intel();

}  // namespace dft

// Index of the engine in use, -1 before the first use. Threads that find it at -1 at the same time
// all write the same value.
extern int ippJumpIndexForMergedLibs;

// Sets the jump index. ippStsNonIntelCpu, a warning, if the processor is of another maker.
int ippInit();
