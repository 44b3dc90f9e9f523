// The opcodes of programs, state chunks and parameters.
#include "iplug/Numbers.h"
#include "iplug/vst2/VSTDispatch.h"

namespace {

constexpr VstIntPtr kLargestChunk = VstIntPtr{64} << 20;  // bytes
constexpr int kProgramNameSize = kVstMaxNameLen;

void CopyProgramName(const IPlugBase& plug, int idx, void* ptr) {
  CopyText(static_cast<char*>(ptr), kProgramNameSize, plug.GetPresetName(idx));
}

}  // namespace

VstIntPtr VSTDispatch::SetProgram(IPlugVST& plug, const VSTCall& call) {
  // The preset being left keeps what was changed on it.
  if (!plug.mStateChunks) plug.ModifyCurrentPreset();
  plug.RestorePreset(SaturateToInt(std::int64_t{call.value}));
  return 0;
}

VstIntPtr VSTDispatch::GetProgram(IPlugVST& plug, const VSTCall&) {
  return plug.GetCurrentPresetIdx();
}

VstIntPtr VSTDispatch::SetProgramName(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  plug.ModifyCurrentPreset(static_cast<const char*>(call.ptr));
  plug.OnPresetsChanged();
  return 0;
}

VstIntPtr VSTDispatch::GetProgramName(IPlugVST& plug, const VSTCall& call) {
  CopyProgramName(plug, plug.GetCurrentPresetIdx(), call.ptr);
  return 0;
}

VstIntPtr VSTDispatch::GetProgramNameIndexed(IPlugVST& plug, const VSTCall& call) {
  CopyProgramName(plug, call.index, call.ptr);
  return *plug.GetPresetName(call.index) ? 1 : 0;
}

VstIntPtr VSTDispatch::GetChunk(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr) return 0;
  const bool isPreset = call.index != 0;
  ByteChunk& chunk = isPreset ? plug.mState : plug.mBankState;
  InitChunkWithIPlugVer(&chunk);
  if (!isPreset) plug.ModifyCurrentPreset();
  const bool saved = isPreset ? plug.SerializeState(&chunk) : plug.SerializePresets(&chunk);
  if (!saved || chunk.Size() <= 0) return 0;
  *static_cast<void**>(call.ptr) = chunk.GetBytes();
  return chunk.Size();
}

VstIntPtr VSTDispatch::SetChunk(IPlugVST& plug, const VSTCall& call) {
  if (!call.ptr || call.value < 0 || call.value > kLargestChunk) return 0;
  const bool isPreset = call.index != 0;
  ByteChunk& chunk = isPreset ? plug.mState : plug.mBankState;
  // A copy first: hosts may hand back the very buffer that they were given.
  ByteChunk incoming;
  incoming.PutBytes(call.ptr, static_cast<int>(call.value));
  if (incoming.Size() != call.value) return 0;
  chunk.Swap(incoming);
  int pos = 0;
  const int version = GetIPlugVerFromChunk(&chunk, &pos);
  if (isPreset || version < kIPlugVersion) {
    // kept: a bank without header is a single preset. Earlier versions saved it so, and their
    // sessions must load.
    pos = plug.UnserializeState(&chunk, pos);
    plug.ModifyCurrentPreset();
  } else {
    pos = plug.UnserializePresets(&chunk, pos);
  }
  if (pos < 0) return 0;
  plug.RedrawParamControls();
  return 1;
}

VstIntPtr VSTDispatch::GetParamText(IPlugVST& plug, const VSTCall& call) {
  const IParam* param = plug.GetParam(call.index);
  if (!param || !call.ptr) return 0;
  char* out = static_cast<char*>(call.ptr);
  if (call.opcode == effGetParamDisplay) {
    param->GetDisplayForHost(param->Value(), false, out);
  } else {
    const bool isName = call.opcode == effGetParamName;
    CopyText(out, IParam::kTextSize, isName ? param->GetNameForHost() : param->GetLabelForHost());
  }
  return 0;
}

VstIntPtr VSTDispatch::CanBeAutomated(IPlugVST&, const VSTCall&) { return 1; }

VstIntPtr VSTDispatch::String2Parameter(IPlugVST& plug, const VSTCall& call) {
  IParam* param = plug.GetParam(call.index);
  if (!param) return 0;
  if (!call.ptr) return 1;
  const auto* text = static_cast<const char*>(call.ptr);
  double value = 0.0;
  if (param->GetNDisplayTexts() > 0) {
    int mapped = 0;
    if (!param->MapDisplayText(text, &mapped)) return 0;
    value = mapped;
  } else {
    value = NumberFromText(text);
    if (param->GetNegateDisplay()) value = -value;
  }
  plug.ShowParameter(call.index, value, false);
  param->Set(value);
  plug.OnParamChange(call.index);
  return 1;
}

VstIntPtr VSTDispatch::VendorSpecific(IPlugVST& plug, const VSTCall& call) {
  const IParam* param = plug.GetParam(SaturateToInt(std::int64_t{call.value}));
  if (call.index == kVendorTextOfValue && call.ptr) {
    if (param) {
      param->GetDisplayForHost(static_cast<double>(call.opt), true, static_cast<char*>(call.ptr));
    }
    return kVendorAnswer;
  }
  const bool stepped = param && param->Type() != kTypeDouble;
  return call.index == kVendorIsStepped && stepped ? kVendorAnswer : 0;
}
