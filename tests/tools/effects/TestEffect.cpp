// A small VST2 effect of known behaviour. The full form holds sound back by one announced block
// without telling so, knows texts of values and processes in double precision; the plain form has
// none of that and is mono and single precision. Both end the process at once when the host breaks
// a promise of the interface: no frames, more than announced, or sound while switched off.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "iplug/vst2/vst2.h"

namespace {

#ifdef TEST_EFFECT_PLAIN
constexpr bool kPlain = true;
#else
constexpr bool kPlain = false;
#endif
constexpr std::size_t kChannels = kPlain ? 1 : 2;
constexpr VstIntPtr kAnswered = 0xBEEF;

struct Description {
  const char* name;
  const char* label;
  double min, max, initial;
  bool stepped;
};
// The last one has the choices "off" and "on".
constexpr Description kParams[] = {
    {"Level", "x", 0, 4, 1, false},   {"Echo", "ms", 0, 5000, 0, true},
    {"Decay", "x", 0, 1, 0.5, false}, {"Twin", "", 0, 1, 0, false},
    {"Twin", "", 0, 1, 0, false},     {"Invert", "", 0, 1, 0, true},
};
constexpr int kNumParams = 6;
enum { kLevel, kEcho, kDecay, kInvert = 5 };

struct Program {
  const char* name;
  double values[kNumParams];
};
constexpr Program kPrograms[] = {{"Straight", {1, 0, 0.5, 0, 0, 0}},
                                 {"Doubled", {2, 0, 0.5, 0, 0, 0}},
                                 {"Echoing", {1, 100, 0.5, 0, 0, 0}}};
constexpr int kNumPrograms = 3;

[[noreturn]] void HostBroke(const char* promise) {
  std::fprintf(stderr, "the host broke a promise: %s\n", promise);
  std::_Exit(99);
}

struct Effect {
  AEffect record{};
  double values[kNumParams];
  int program = 0;
  double rate = 44100;
  int block = 0;
  bool on = false;
  std::size_t connected = kChannels;
  std::vector<double> held[2];    // waiting for the next block
  std::vector<double> memory[2];  // ring of what came out, for the echo
  std::size_t position = 0;

  void Clear() {
    for (auto& channel : held) channel.assign(static_cast<std::size_t>(block), 0.0);
    for (auto& channel : memory) channel.assign(static_cast<std::size_t>(rate * 5 + 1), 0.0);
    position = 0;
  }

  double Sample(std::size_t c, double in) {
    const auto echo = static_cast<std::size_t>(values[kEcho] * rate / 1000);
    const std::size_t length = memory[c].size();
    double out = in;
    if (echo > 0) out += values[kDecay] * memory[c][(position + length - echo) % length];
    memory[c][position] = out;
    return out * values[kLevel] * (values[kInvert] >= 0.5 ? -1 : 1);
  }

  template <typename T>
  void Process(T** in, T** out, int frames) {
    if (frames <= 0) HostBroke("a call without frames");
    if (frames > block) HostBroke("more frames than announced");
    if (!on) HostBroke("sound while switched off");
    if (frames != block && !kPlain) HostBroke("this effect wants whole blocks");
    for (int i = 0; i < frames; ++i) {
      for (std::size_t c = 0; c < kChannels; ++c) {
        const bool heard = c < connected;
        const double fresh = Sample(c, heard ? static_cast<double>(in[c][i]) : 0.0);
        double& waiting = held[c][static_cast<std::size_t>(i)];
        out[c][i] = static_cast<T>(kPlain ? fresh : waiting);
        waiting = fresh;
      }
      position = (position + 1) % memory[0].size();
    }
  }
};

Effect& Of(AEffect* record) { return *static_cast<Effect*>(record->object); }

double Real(int id, double normalised) {
  const Description& d = kParams[id];
  return d.min + (d.max - d.min) * normalised;
}

void TextOf(int id, double value, void* ptr) {
  if (id == kInvert)
    std::strcpy(static_cast<char*>(ptr), value >= 0.5 ? "on" : "off");
  else
    std::snprintf(static_cast<char*>(ptr), 32, kParams[id].stepped ? "%.0f" : "%.2f", value);
}

VstIntPtr SetFromText(Effect& effect, int id, const char* text) {
  if (id == kInvert && std::strcmp(text, "on") != 0 && std::strcmp(text, "off") != 0) return 0;
  effect.values[id] = id == kInvert ? (text[1] == 'n' ? 1 : 0) : std::atof(text);
  return 1;
}

// What the plain form leaves unanswered.
VstIntPtr DispatchExtra(Effect& effect, int opcode, int index, VstIntPtr value, void* ptr,
                        float opt) {
  switch (opcode) {
    case effString2Parameter: return SetFromText(effect, index, static_cast<const char*>(ptr));
    case effVendorSpecific:
      if (index == 7) TextOf(static_cast<int>(value), Real(static_cast<int>(value), opt), ptr);
      return index == 7 || kParams[value].stepped ? kAnswered : 0;
    case effSetSpeakerArrangement:
      effect.connected =
          static_cast<std::size_t>(static_cast<VstSpeakerArrangement*>(ptr)->numChannels);
      return 1;
    case effGetEffectName: std::strcpy(static_cast<char*>(ptr), "Test effect"); return 1;
    default: return 0;
  }
}

VstIntPtr Dispatch(AEffect* record, std::int32_t opcode, std::int32_t index, VstIntPtr value,
                   void* ptr, float opt) {
  Effect& effect = Of(record);
  switch (opcode) {
    case effClose: delete &effect; return 0;
    case effSetSampleRate: effect.rate = opt; return 0;
    case effSetBlockSize:
      if (effect.on) HostBroke("another block size while switched on");
      effect.block = static_cast<int>(value);
      return 0;
    case effMainsChanged:
      effect.on = value != 0;
      effect.Clear();
      return 0;
    case effSetProgram:
      effect.program = static_cast<int>(value);
      std::copy_n(kPrograms[value].values, kNumParams, effect.values);
      return 0;
    case effGetProgram: return effect.program;
    case effGetProgramNameIndexed:
      std::strcpy(static_cast<char*>(ptr), kPrograms[index].name);
      return 1;
    case effGetParamName: std::strcpy(static_cast<char*>(ptr), kParams[index].name); return 1;
    case effGetParamLabel: std::strcpy(static_cast<char*>(ptr), kParams[index].label); return 1;
    case effGetParamDisplay: TextOf(index, effect.values[index], ptr); return 1;
    default: return kPlain ? 0 : DispatchExtra(effect, opcode, index, value, ptr, opt);
  }
}

void SetParameter(AEffect* record, std::int32_t id, float value) {
  Of(record).values[id] = Real(id, value);
}

float GetParameter(AEffect* record, std::int32_t id) {
  const Description& d = kParams[id];
  return static_cast<float>((Of(record).values[id] - d.min) / (d.max - d.min));
}

void ProcessFloat(AEffect* record, float** in, float** out, std::int32_t frames) {
  Of(record).Process(in, out, frames);
}

void ProcessDouble(AEffect* record, double** in, double** out, std::int32_t frames) {
  Of(record).Process(in, out, frames);
}

}  // namespace

// Older effects export their entry point as `main` alone.
#ifdef TEST_EFFECT_MAIN_ONLY
#define TEST_ENTRY asm("main")
#else
#define TEST_ENTRY
#endif
extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(
    audioMasterCallback callback) TEST_ENTRY;

AEffect* VSTPluginMain(audioMasterCallback callback) {
  if (callback(nullptr, audioMasterVersion, 0, 0, nullptr, 0) < 2) return nullptr;
  auto* const effect = new Effect;
  std::copy_n(kPrograms[0].values, kNumParams, effect->values);
  AEffect& record = effect->record;
  record.magic = kEffectMagic;
  record.dispatcher = Dispatch;
  record.setParameter = SetParameter;
  record.getParameter = GetParameter;
  record.processReplacing = ProcessFloat;
  record.processDoubleReplacing = kPlain ? nullptr : ProcessDouble;
  record.numPrograms = kNumPrograms;
  record.numParams = kNumParams;
  record.numInputs = record.numOutputs = static_cast<int>(kChannels);
  record.flags = effFlagsCanReplacing | (kPlain ? 0 : effFlagsCanDoubleReplacing);
  record.object = effect;
  record.uniqueID = 0x54657374;
  record.version = 10203;
  return &record;
}
