// The built module as a workstation sees it: loaded from its file and driven through its record.
#pragma once

#include <string>
#include <vector>

#include "iplug/vst2.h"

using Signal = std::vector<float>;
struct Stereo {
  Signal left, right;
  bool operator==(const Stereo&) const = default;
};

// The module's path, and one of its entry points by name; null if it has none of that name.
std::string ModulePath();
using EntryPoint = AEffect* (*)(audioMasterCallback);
EntryPoint ModuleEntry(const char* name);

// One instance, opened at a rate in Hz and a block size in samples, and closed at the end.
class HostedPlugin {
 public:
  explicit HostedPlugin(int blockSize = 64, float sampleRate = 44100.0f);
  ~HostedPlugin();
  HostedPlugin(const HostedPlugin&) = delete;
  HostedPlugin& operator=(const HostedPlugin&) = delete;

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) const;
  AEffect* Effect() const { return mEffect; }
  int BlockSize() const { return mBlockSize; }

  void SetNormalized(int id, float value) const;
  // Sets a real value by its text, as a host's value field does.
  void Set(int id, double value) const;
  float GetNormalized(int id) const;
  std::string Text(int opcode, int index) const;

  // Runs float blocks of the given frame count (0: the block size) over the input.
  Stereo Process(const Stereo& input, int frames = 0) const;
  // Makes the settings at hand sound from the next sample on, with all signal memory clear.
  void SettleByReset();

 private:
  AEffect* mEffect;
  int mBlockSize;
};

// `count` samples of noise on both channels, from a seed.
Stereo Noise(int count, unsigned seed);
// A single 1 on both channels.
Stereo Impulse(int count);
