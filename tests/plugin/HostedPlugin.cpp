// Loading and driving the built module.
#include "tests/plugin/HostedPlugin.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "tests/support/Random.h"

namespace {

VstIntPtr HostCallback(AEffect*, std::int32_t opcode, std::int32_t, VstIntPtr, void* ptr, float) {
  if (opcode == audioMasterVersion) return 2400;
  if (opcode == audioMasterGetProductString) {
    std::strcpy(static_cast<char*>(ptr), "Test bench");
    return 1;
  }
  return 0;
}

}  // namespace

std::string ModulePath() { return TOLMARA_BINARY_DIR "/Tolmara.so"; }

EntryPoint ModuleEntry(const char* name) {
  static void* const module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) throw std::runtime_error(dlerror());
  return reinterpret_cast<EntryPoint>(dlsym(module, name));
}

HostedPlugin::HostedPlugin(int blockSize, float sampleRate)
    : mEffect(ModuleEntry("VSTPluginMain")(HostCallback)), mBlockSize(blockSize) {
  Dispatch(effOpen);
  Dispatch(effSetSampleRate, 0, 0, nullptr, sampleRate);
  Dispatch(effSetBlockSize, 0, blockSize);
  Dispatch(effMainsChanged, 0, 1);
}

HostedPlugin::~HostedPlugin() { Dispatch(effClose); }

VstIntPtr HostedPlugin::Dispatch(int opcode, int index, VstIntPtr value, void* ptr,
                                 float opt) const {
  return mEffect->dispatcher(mEffect, opcode, index, value, ptr, opt);
}

void HostedPlugin::SetNormalized(int id, float value) const {
  mEffect->setParameter(mEffect, id, value);
}

void HostedPlugin::Set(int id, double value) const {
  std::string text = std::to_string(value);
  if (Dispatch(effString2Parameter, id, 0, text.data()) == 1) return;
  // A switch takes its texts only.
  text = value != 0.0 ? "on" : "off";
  Dispatch(effString2Parameter, id, 0, text.data());
}

float HostedPlugin::GetNormalized(int id) const { return mEffect->getParameter(mEffect, id); }

std::string HostedPlugin::Text(int opcode, int index) const {
  char text[256] = {};
  Dispatch(opcode, index, 0, text);
  return text;
}

Stereo HostedPlugin::Process(const Stereo& input, int frames) const {
  const int step = frames > 0 ? frames : mBlockSize;
  const int count = static_cast<int>(input.left.size());
  Stereo in = input, out{Signal(in.left.size()), Signal(in.left.size())};
  for (int at = 0; at < count; at += step) {
    float* ins[] = {in.left.data() + at, in.right.data() + at};
    float* outs[] = {out.left.data() + at, out.right.data() + at};
    mEffect->processReplacing(mEffect, ins, outs, std::min(step, count - at));
  }
  return out;
}

void HostedPlugin::SettleByReset() {
  const Signal silence(static_cast<size_t>(mBlockSize));
  // A block starts no render while another one runs, so the second round is for the last settings.
  for (int round = 0; round < 2; ++round) {
    Process({silence, silence});
    Dispatch(effSetBlockSize, 0, mBlockSize + 1);
    Dispatch(effSetBlockSize, 0, mBlockSize);
  }
}

Stereo Noise(int count, unsigned seed) {
  Random random(seed);
  Stereo noise = {Signal(static_cast<size_t>(count)), Signal(static_cast<size_t>(count))};
  for (Signal* channel : {&noise.left, &noise.right}) {
    for (float& x : *channel) x = random.uniform(-1.0f, 1.0f);
  }
  return noise;
}

Stereo Impulse(int count) {
  Signal impulse(static_cast<size_t>(count));
  impulse[0] = 1.0f;
  return {impulse, impulse};
}
