// The built module as a workstation sees it: loaded from its file and driven through its record.
#pragma once

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "iplug/vst2/vst2.h"

using Signal = std::vector<float>;
struct Stereo {
  Signal left, right;
  bool operator==(const Stereo&) const = default;
};

constexpr const char* kModulePath = TOLMARA_BINARY_DIR "/Tolmara.so";

// One of the module's entry points by name; null if it has none of that name.
using EntryPoint = AEffect* (*)(audioMasterCallback);
inline EntryPoint ModuleEntry(const char* name) {
  static void* const module = dlopen(kModulePath, RTLD_NOW | RTLD_LOCAL);
  if (!module) throw std::runtime_error(dlerror());
  return reinterpret_cast<EntryPoint>(dlsym(module, name));
}

// One instance, opened at a rate in Hz and a block size in samples, and closed at the end.
class HostedPlugin {
 public:
  explicit HostedPlugin(int blockSize = 64, float sampleRate = 44100.0f)
      : mEffect(ModuleEntry("VSTPluginMain")(HostCallback)), mBlockSize(blockSize) {
    Dispatch(effOpen);
    Dispatch(effSetSampleRate, 0, 0, nullptr, sampleRate);
    Dispatch(effSetBlockSize, 0, blockSize);
    Dispatch(effMainsChanged, 0, 1);
  }
  ~HostedPlugin() { Dispatch(effClose); }
  HostedPlugin(const HostedPlugin&) = delete;
  HostedPlugin& operator=(const HostedPlugin&) = delete;

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) const {
    return mEffect->dispatcher(mEffect, opcode, index, value, ptr, opt);
  }
  AEffect* Effect() const { return mEffect; }
  void SetNormalized(int id, float value) const { mEffect->setParameter(mEffect, id, value); }
  float GetNormalized(int id) const { return mEffect->getParameter(mEffect, id); }
  std::string Text(int opcode, int index) const {
    char text[256] = {};
    Dispatch(opcode, index, 0, text);
    return text;
  }
  // Sets a real value by its text, as a host's value field does.
  void Set(int id, double value) const {
    std::string text = std::to_string(value);
    if (Dispatch(effString2Parameter, id, 0, text.data()) == 1) return;
    text = value != 0.0 ? "on" : "off";  // a switch takes its texts only
    Dispatch(effString2Parameter, id, 0, text.data());
  }

  // Runs float blocks of the given frame count (0: the block size) over the input.
  Stereo Process(const Stereo& input, int frames = 0) const {
    const int step = frames > 0 ? frames : mBlockSize;
    const int count = static_cast<int>(input.left.size());
    Stereo in = input, out = input;
    for (int at = 0; at < count; at += step) {
      float* ins[] = {in.left.data() + at, in.right.data() + at};
      float* outs[] = {out.left.data() + at, out.right.data() + at};
      mEffect->processReplacing(mEffect, ins, outs, std::min(step, count - at));
    }
    return out;
  }
  // Makes the settings at hand sound from the next sample on, with all signal memory clear.
  void SettleByReset() const {
    const Signal silence(static_cast<size_t>(mBlockSize));
    // A block starts no render while another one runs, so the second round is for the last
    // settings.
    for (int round = 0; round < 2; ++round) {
      Process({silence, silence});
      Dispatch(effSetBlockSize, 0, mBlockSize + 1);
      Dispatch(effSetBlockSize, 0, mBlockSize);
    }
  }

 private:
  static VstIntPtr HostCallback(AEffect*, std::int32_t opcode, std::int32_t, VstIntPtr, void*,
                                float) {
    return opcode == audioMasterVersion ? 2400 : 0;
  }

  AEffect* mEffect;
  int mBlockSize;
};
