// Construction of the adapter, the record for the host, and the editor's side of it.
#include "iplug/vst2/IPlugVST.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "iplug/Numbers.h"
#include "iplug/Trace.h"
#include "iplug/vst2/Hosts.h"

namespace {

constexpr int kFirstBlockSize = 1024;  // until the host announces one

// Arrangements of none, one and two channels have numbers; all larger ones are "of the user".
int SpeakerType(int nChannels) { return nChannels < 3 ? nChannels - 1 : -2; }

bool ConnectsIdlePins(int host) {
  return host == kHostForte || host == kHostAudition || host == kHostOrion ||
         host == kHostSAWStudio;
}

}  // namespace

IPlugVST::IPlugVST(audioMasterCallback hostCallback, int nParams, const char* channelIOStr,
                   int nPresets, const char* effectName, const char* productName,
                   const char* mfrName, int vendorVersion, int uniqueID, int mfrID, int latency,
                   bool doesMidi, bool stateChunks, bool isInst)
    : IPlugBase(nParams, channelIOStr, nPresets, effectName, productName, mfrName, vendorVersion,
                uniqueID, mfrID, latency, doesMidi, stateChunks, isInst, kAPIVST2),
      mHostCallback(hostCallback),
      mDoesMidi(doesMidi) {
  Trace("IPlugVST", __LINE__, "%s", GetEffectName());
  FillAEffect();
  mInputSpkrArr.numChannels = NInChannels();
  mInputSpkrArr.type = SpeakerType(NInChannels());
  mOutputSpkrArr.numChannels = NOutChannels();
  mOutputSpkrArr.type = SpeakerType(NOutChannels());
  SetInputChannelConnections(0, NInChannels(), true);
  SetOutputChannelConnections(0, NOutChannels(), true);
  SetBlockSize(kFirstBlockSize);
}

void IPlugVST::FillAEffect() {
  mAEffect.magic = kEffectMagic;
  mAEffect.dispatcher = Dispatcher;
  mAEffect.process = Process;
  mAEffect.setParameter = SetParameter;
  mAEffect.getParameter = GetParameter;
  mAEffect.numPrograms = NPresets();
  mAEffect.numParams = NParams();
  mAEffect.numInputs = NInChannels();
  mAEffect.numOutputs = NOutChannels();
  mAEffect.flags = effFlagsCanReplacing | effFlagsCanDoubleReplacing;
  if (mStateChunks) mAEffect.flags |= effFlagsProgramChunks;
  if (LegalIO(1, -1)) mAEffect.flags |= effFlagsCanMono;
  if (mIsInst) mAEffect.flags |= effFlagsIsSynth;
  mAEffect.initialDelay = GetLatency();
  mAEffect.ioRatio = 1.0f;
  mAEffect.object = this;
  mAEffect.uniqueID = GetUniqueID();
  mAEffect.version = GetEffectVersion(true);
  mAEffect.processReplacing = ProcessReplacing;
  mAEffect.processDoubleReplacing = ProcessDouble;
}

void IPlugVST::HostSpecificInit() {
  if (mHostSpecificInitDone) return;
  mHostSpecificInitDone = true;
  if (ConnectsIdlePins(GetHost())) DisconnectExtraInputs();
  mAEffect.numInputs = mInputSpkrArr.numChannels = NInChannels();
  mAEffect.numOutputs = mOutputSpkrArr.numChannels = NOutChannels();
  OnHostIdentified();
}

// For hosts that connect more pins than they feed.
void IPlugVST::DisconnectExtraInputs() {
  SetInputChannelConnections(2, NInChannels(), false);
  SetOutputChannelConnections(2, NOutChannels(), true);
}

void IPlugVST::SetEditRect() {
  int width = 0;
  int height = 0;
  GetEditorSize(&width, &height);
  mEditRect.bottom = static_cast<std::int16_t>(std::min(height, INT16_MAX));
  mEditRect.right = static_cast<std::int16_t>(std::min(width, INT16_MAX));
}

void IPlugVST::ResizeGraphics() {
  if (!HasEditor()) return;
  SetEditRect();
  OnWindowResize();
}

void IPlugVST::AttachGraphics(IGraphics* graphics) {
  if (!graphics) return;
  IPlugBase::AttachGraphics(graphics);
  mAEffect.flags |= effFlagsHasEditor;
  SetEditRect();
}

void IPlugVST::SetLatency(int samples) {
  mAEffect.initialDelay = samples;
  IPlugBase::SetLatency(samples);
}

AEffect* ConstructUnderLock(IPlugVST* (*make)(audioMasterCallback),
                            audioMasterCallback hostCallback) {
  static PlugLock lock;  // instances share resources while they are made
  const PlugLock::Guard guard(lock);
  try {
    std::unique_ptr<IPlugVST> plug(make(hostCallback));
    if (!plug) return nullptr;
    plug->MakeEmptyPresets();
    AEffect* effect = plug->GetAEffect();
    effect->numPrograms = std::max(1, effect->numPrograms);
    return static_cast<void>(plug.release()), effect;
  } catch (...) {
    return nullptr;  // the host is no C++ caller
  }
}
