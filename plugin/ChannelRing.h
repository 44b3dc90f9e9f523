// The two rings of one channel, between the host's frame counts and the fixed internal block.
#pragma once

#include "numeric/AlignedVector.h"

// Both rings hold 2B samples, B being the internal block. A sample written at index i of the input
// ring leaves from index i of the output ring, and reading trails writing by B, so the delay is
// exactly B samples for any frame counts up to B. Order of calls per host block: WriteInput;
// TakeBlock and later PutBlock if HasBlock; ReadOutput. Only Allocate allocates.
//
// kept: a frame count of 0, or of a multiple of 2B, takes the wrapped form and moves a whole ring
// through the host's buffers; the host adapter never lets one through.
struct ChannelRing {
  AlignedVector<float> input;   // 2B samples
  AlignedVector<float> output;  // 2B samples
  int writePos = 0;             // where the next host sample goes
  int blockPos = 0;             // start of the next internal block
  int blockSize = 0;            // B
  int ringSize = 0;             // 2B

  // Zeroed rings for blocks of B samples, positions at 0. Not on the audio thread.
  void Allocate(int B);
  // Zeroes the samples; the positions stay.
  void Clear();

  void WriteInput(const double* in, int frames);
  // True if the frames just written complete a block.
  bool HasBlock(int frames) const;
  void TakeBlock(float* block) const;        // B samples from the input ring
  void PutBlock(const float* block);         // B samples to the output ring
  void ReadOutput(double* out, int frames);  // also advances writePos
};
