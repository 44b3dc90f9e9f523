// The dispatcher that the host calls, and the opcodes of life, format, editor and events.
#include "iplug/vst2/VSTDispatch.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "iplug/Numbers.h"
#include "iplug/Trace.h"

namespace {

constexpr std::int32_t kLastOpcode = effGetSpeakerArrangement;

// Announcements beyond this are not taken: the old size stays.
constexpr VstIntPtr kLargestBlock = 1 << 20;  // samples

struct Row {
  std::int32_t opcode;
  VSTDispatch::Answer answer;
};

// clang-format off
constexpr Row kRows[] = {
    {effOpen, VSTDispatch::Open},
    {effSetProgram, VSTDispatch::SetProgram},
    {effGetProgram, VSTDispatch::GetProgram},
    {effSetProgramName, VSTDispatch::SetProgramName},
    {effGetProgramName, VSTDispatch::GetProgramName},
    {effGetParamLabel, VSTDispatch::GetParamText},
    {effGetParamDisplay, VSTDispatch::GetParamText},
    {effGetParamName, VSTDispatch::GetParamText},
    {effSetSampleRate, VSTDispatch::SetSampleRate},
    {effSetBlockSize, VSTDispatch::SetBlockSize},
    {effMainsChanged, VSTDispatch::MainsChanged},
    {effEditGetRect, VSTDispatch::EditGetRect},
    {effEditOpen, VSTDispatch::EditOpen},
    {effEditClose, VSTDispatch::EditClose},
    {effIdentify, VSTDispatch::Identify},
    {effGetChunk, VSTDispatch::GetChunk},
    {effSetChunk, VSTDispatch::SetChunk},
    {effProcessEvents, VSTDispatch::ProcessEvents},
    {effCanBeAutomated, VSTDispatch::CanBeAutomated},
    {effString2Parameter, VSTDispatch::String2Parameter},
    {effGetProgramNameIndexed, VSTDispatch::GetProgramNameIndexed},
    {effGetInputProperties, VSTDispatch::GetPinProperties},
    {effGetOutputProperties, VSTDispatch::GetPinProperties},
    {effGetPlugCategory, VSTDispatch::GetPlugCategory},
    {effSetSpeakerArrangement, VSTDispatch::SetSpeakerArrangement},
    {effGetEffectName, VSTDispatch::GetIdentityText},
    {effGetVendorString, VSTDispatch::GetIdentityText},
    {effGetProductString, VSTDispatch::GetIdentityText},
    {effVendorSpecific, VSTDispatch::VendorSpecific},
    {effCanDo, VSTDispatch::CanDo},
    {effGetVstVersion, VSTDispatch::GetVstVersion},
    {effGetMidiKeyName, VSTDispatch::GetMidiKeyName},
    {effGetSpeakerArrangement, VSTDispatch::GetSpeakerArrangement},
};
// clang-format on

// The rows by opcode.
constexpr auto kAnswers = [] {
  std::array<VSTDispatch::Answer, kLastOpcode + 1> answers{};
  for (const Row& row : kRows) answers[static_cast<std::size_t>(row.opcode)] = row.answer;
  return answers;
}();

}  // namespace

VSTDispatch::Answer VSTDispatch::Find(std::int32_t opcode) {
  return opcode >= 0 && opcode <= kLastOpcode ? kAnswers[static_cast<std::size_t>(opcode)]
                                              : nullptr;
}

VstIntPtr IPlugVST::Dispatcher(AEffect* effect, std::int32_t opcode, std::int32_t index,
                               VstIntPtr value, void* ptr, float opt) {
  IPlugVST* plug = effect ? static_cast<IPlugVST*>(effect->object) : nullptr;
  if (!plug) return 0;
  {
    const PlugLock::Guard lock(plug->mLock);
    if (opcode == effEditIdle || opcode == effIdle) return 0;  // too frequent to trace
    Trace("VSTDispatcher", __LINE__, "%d(%s):%d:%d", opcode, "", index,
          SaturateToInt(std::int64_t{value}));
    if (opcode != effClose) {
      const VSTDispatch::Answer answer = VSTDispatch::Find(opcode);
      return answer ? answer(*plug, {opcode, index, value, ptr, opt}) : 0;
    }
  }
  // The lock dies with the object. An open editor closes first, while the object it calls exists.
  plug->CloseEditorWindow();
  delete plug;
  return 0;
}

VstIntPtr VSTDispatch::Open(IPlugVST& plug, const VSTCall&) {
  plug.HostSpecificInit();
  plug.OnParamReset();
  return 0;
}

VstIntPtr VSTDispatch::SetSampleRate(IPlugVST& plug, const VSTCall& call) {
  plug.SetSampleRate(static_cast<double>(call.opt));
  plug.Reset();
  return 0;
}

VstIntPtr VSTDispatch::SetBlockSize(IPlugVST& plug, const VSTCall& call) {
  if (call.value > 0 && call.value <= kLargestBlock) {
    plug.SetBlockSize(static_cast<int>(call.value));
  }
  plug.Reset();
  return 0;
}

VstIntPtr VSTDispatch::MainsChanged(IPlugVST& plug, const VSTCall& call) {
  const bool on = call.value != 0;
  plug.OnActivate(on);
  // kept: switching off resets, switching on does not. Playback starts from silence either way, and
  // a host that switches on during playback does not cut the sound.
  if (!on) plug.Reset();
  return 0;
}

VstIntPtr VSTDispatch::EditGetRect(IPlugVST& plug, const VSTCall& call) {
  if (!plug.HasEditor()) return 0;
  if (call.ptr) *static_cast<ERect**>(call.ptr) = &plug.mEditRect;
  return 1;
}

VstIntPtr VSTDispatch::EditOpen(IPlugVST& plug, const VSTCall& call) {
  if (!plug.OpenEditorWindow(call.ptr)) return 0;
  plug.OnGUIOpen();
  return 1;
}

VstIntPtr VSTDispatch::EditClose(IPlugVST& plug, const VSTCall&) {
  if (!plug.HasEditor()) return 0;
  plug.OnGUIClose();
  plug.CloseEditorWindow();
  return 1;
}

VstIntPtr VSTDispatch::ProcessEvents(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  const auto* events = static_cast<const VstEvents*>(call.ptr);
  VstEvent* const* list = events->events;
  for (std::int32_t i = 0; i < events->numEvents; ++i) {
    if (!list[i]) continue;
    if (list[i]->type == kVstMidiType) {
      const auto* event = reinterpret_cast<const VstMidiEvent*>(list[i]);
      IMidiMsg msg{event->deltaFrames, static_cast<std::uint8_t>(event->midiData[0]),
                   static_cast<std::uint8_t>(event->midiData[1]),
                   static_cast<std::uint8_t>(event->midiData[2])};
      plug.ProcessMidiMsg(&msg);
    } else if (list[i]->type == kVstSysExType) {
      const auto* event = reinterpret_cast<const VstMidiSysexEvent*>(list[i]);
      ISysEx msg{event->deltaFrames, event->dumpBytes,
                 reinterpret_cast<const std::uint8_t*>(event->sysexDump)};
      plug.ProcessSysEx(&msg);
    }
  }
  return 1;
}

VstIntPtr VSTDispatch::GetMidiKeyName(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  auto* key = static_cast<MidiKeyName*>(call.ptr);
  key->keyName[0] = 0;
  return plug.MidiNoteName(key->thisKeyNumber, key->keyName) ? 1 : 0;
}
