// The host's opcodes, for the adapter's sources only. Tolmara answers all of them; events and key
// names go nowhere.
#pragma once

#include "iplug/vst2/IPlugVST.h"

// Arguments of one dispatcher call; their meaning depends on the opcode.
struct VSTCall {
  std::int32_t opcode;
  std::int32_t index;
  VstIntPtr value;
  void* ptr;
  float opt;
};

// Answers to opcodes, one function for each or for a few alike. All run under the plug-in lock.
struct VSTDispatch {
  using Answer = VstIntPtr (*)(IPlugVST& plug, const VSTCall& call);

  // The answer to an opcode, null for those that do nothing.
  static Answer Find(std::int32_t opcode);

  // VSTDispatch.cpp: life, format and editor.
  static VstIntPtr Open(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr SetSampleRate(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr SetBlockSize(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr MainsChanged(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr EditGetRect(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr EditOpen(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr EditClose(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr ProcessEvents(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetMidiKeyName(IPlugVST& plug, const VSTCall& call);

  // VSTDispatchState.cpp: programs, chunks and parameters.
  static VstIntPtr SetProgram(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetProgram(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr SetProgramName(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetProgramName(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetProgramNameIndexed(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetChunk(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr SetChunk(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetParamText(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr CanBeAutomated(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr String2Parameter(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr VendorSpecific(IPlugVST& plug, const VSTCall& call);

  // VSTDispatchInfo.cpp: what the plug-in is.
  static VstIntPtr Identify(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetPinProperties(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetPlugCategory(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr SetSpeakerArrangement(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetSpeakerArrangement(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetIdentityText(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr CanDo(IPlugVST& plug, const VSTCall& call);
  static VstIntPtr GetVstVersion(IPlugVST& plug, const VSTCall& call);
};
