// The opcodes that ask what the plug-in is and can do.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "iplug/Numbers.h"
#include "iplug/Trace.h"
#include "iplug/vst2/VSTDispatch.h"

namespace {

constexpr VstIntPtr kInterfaceVersion = 2400;
constexpr VstIntPtr kIdentity = 0x4E764566;  // 'NvEf'
constexpr VstIntPtr kExtensionAnswer = 0xBEEF0000;

enum EExtension : std::uint32_t { kExtensionCalls = 1, kExtensionViewAsConfig = 2 };

bool IsMidiQuery(const char* query) {
  static constexpr const char* kQueries[] = {"sendVstEvents", "sendVstMidiEvent",
                                             "receiveVstEvents", "receiveVstMidiEvent"};
  return std::any_of(std::begin(kQueries), std::end(kQueries),
                     [query](const char* known) { return std::strcmp(query, known) == 0; });
}

// The bit of an extension query, 0 for any other.
std::uint32_t ExtensionOf(const char* query) {
  if (std::strcmp(query, "hasCockosExtensions") == 0) return kExtensionCalls;
  return std::strcmp(query, "hasCockosViewAsConfig") == 0 ? kExtensionViewAsConfig : 0U;
}

}  // namespace

VstIntPtr VSTDispatch::Identify(IPlugVST&, const VSTCall&) { return kIdentity; }

VstIntPtr VSTDispatch::GetPinProperties(IPlugVST& plug, const VSTCall& call) {
  const bool isInput = call.opcode == effGetInputProperties;
  const int count = isInput ? plug.NInChannels() : plug.NOutChannels();
  if (call.index < 0 || call.index >= count || !call.ptr) return 0;
  auto* pin = static_cast<VstPinProperties*>(call.ptr);
  const char* label = isInput ? plug.GetInputLabel(call.index) : plug.GetOutputLabel(call.index);
  if (*label) {
    CopyText(pin->label, label);
  } else {
    std::snprintf(pin->label, sizeof pin->label, isInput ? "Input %d" : "Output %d",
                  call.index + 1);
  }
  pin->flags = kVstPinIsActive;
  if (call.index % 2 == 0 && call.index + 1 < count) pin->flags |= kVstPinIsStereo;
  return 1;
}

VstIntPtr VSTDispatch::GetPlugCategory(IPlugVST& plug, const VSTCall&) {
  return plug.mIsInst ? kPlugCategSynth : kPlugCategEffect;
}

VstIntPtr VSTDispatch::SetSpeakerArrangement(IPlugVST& plug, const VSTCall& call) {
  if (const auto* in = reinterpret_cast<const VstSpeakerArrangement*>(call.value)) {
    const int n = std::clamp(in->numChannels, 0, plug.NInChannels());
    plug.SetInputChannelConnections(0, n, true);
    plug.SetInputChannelConnections(n, plug.NInChannels() - n, false);
  }
  if (const auto* out = static_cast<const VstSpeakerArrangement*>(call.ptr)) {
    const int n = std::clamp(out->numChannels, 0, plug.NOutChannels());
    plug.SetOutputChannelConnections(0, n, true);
    plug.SetOutputChannelConnections(n, plug.NOutChannels() - n, false);
  }
  return 1;
}

VstIntPtr VSTDispatch::GetSpeakerArrangement(IPlugVST& plug, const VSTCall& call) {
  if (call.value) *reinterpret_cast<VstSpeakerArrangement**>(call.value) = &plug.mInputSpkrArr;
  if (call.ptr) *static_cast<VstSpeakerArrangement**>(call.ptr) = &plug.mOutputSpkrArr;
  return 1;
}

VstIntPtr VSTDispatch::GetIdentityText(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  char* out = static_cast<char*>(call.ptr);
  switch (call.opcode) {
    case effGetEffectName: CopyText(out, kVstMaxEffectNameLen, plug.GetEffectName()); break;
    case effGetVendorString: CopyText(out, kVstMaxVendorStrLen, plug.GetMfrName()); break;
    default: CopyText(out, kVstMaxProductStrLen, plug.GetProductName()); break;
  }
  return 1;
}

VstIntPtr VSTDispatch::CanDo(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  const auto* query = static_cast<const char*>(call.ptr);
  Trace("VSTDispatcher", __LINE__, "VSTCanDo(%s)", query);
  if (std::strcmp(query, "receiveVstTimeInfo") == 0) return 1;
  if (plug.mDoesMidi && IsMidiQuery(query)) return 1;
  const std::uint32_t extension = ExtensionOf(query);
  plug.mHasVSTExtensions |= extension;
  return extension ? kExtensionAnswer : 0;
}

VstIntPtr VSTDispatch::GetVstVersion(IPlugVST&, const VSTCall&) { return kInterfaceVersion; }
