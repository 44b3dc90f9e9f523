// Sound through an effect in whole blocks, with its settings and its delay settled beforehand.
#pragma once
#include <cstdint>
#include <vector>

#include "tools/host/PluginHost.h"

// Announces a rate and a block and then feeds blocks of exactly that many frames. Channels in use
// are the first one or two. A mono sound is handled like a workstation's mono track: only the first
// input and output are connected, the other input gets silence. `host` outlives it.
class BlockRunner {
 public:
  BlockRunner(PluginHost& host, int channels, double rate, int block);

  // The effect's true delay in frames at the announced block. An effect may hide a delay of whole
  // blocks behind its report: a single impulse is sent at two announced block sizes, and what comes
  // later by the difference of the blocks is delayed by a block. Call before the settings are made.
  int MeasureDelay();

  // Makes the settings done so far sound from the next frame on, out of silence, the same each
  // time: a block of silence lets a background computation begin, and a change of the block size
  // and back makes the effect finish it.
  void Settle();

  int Block() const { return mBlock; }
  // Interleaved in and out; `frames` of at most a block, the rest of the block is silence. Always
  // gives a whole block.
  void Process(const double* in, int frames, double* out);

 private:
  void Announce(int block);
  std::int64_t ImpulseOnset(int block);

  PluginHost& mHost;
  std::size_t mChannels;
  double mRate;
  int mBlock;
  std::vector<std::vector<double>> mBuffers;  // inputs, then outputs, one block each
  std::vector<double*> mPointers;             // the same for the effect
};
