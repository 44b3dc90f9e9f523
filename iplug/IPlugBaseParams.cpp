// Parameters: changes from the editor, announcements, and their state as bytes.
#include <cmath>

#include "iplug/IPlugBase.h"
#include "iplug/Trace.h"
#include "iplug/vst2/Hosts.h"

void IPlugBase::SetParameterFromGUI(int idx, double normalizedValue) {
  Trace("SetParameterFromGUI", __LINE__, "%d:%f", idx, normalizedValue);
  IParam* param = GetParam(idx);
  if (!param) return;
  // kept: this host calls the plug-in back during the notice, from another of its threads, which
  // would wait for the lock for ever.
  const bool informUnlocked = GetHost() == kHostFL;
  {
    const PlugLock::Guard lock(mLock);
    param->SetNormalized(normalizedValue);
    if (!informUnlocked) InformHostOfParamChange(idx, normalizedValue);
    OnParamChange(idx);
  }
  if (informUnlocked) InformHostOfParamChange(idx, normalizedValue);
}

void IPlugBase::OnParamReset() {
  for (int i = 0; i < NParams(); ++i) OnParamChange(i);
}

void IPlugBase::DirtyParameters() {
  const PlugLock::Guard lock(mLock);
  for (int i = 0; i < NParams(); ++i) InformHostOfParamChange(i, GetParam(i)->GetNormalized());
}

bool IPlugBase::SerializeParams(ByteChunk* chunk) {
  const PlugLock::Guard lock(mLock);
  bool saved = true;
  for (int i = 0; i < NParams() && saved; ++i) {
    const IParam* param = GetParam(i);
    const double value = param->Value();
    Trace("SerializeParams", __LINE__, "%d %s %f", i, param->GetNameForHost(), value);
    saved = chunk->Put(&value) > 0;
  }
  return saved;
}

int IPlugBase::UnserializeParams(ByteChunk* chunk, int startPos) {
  const PlugLock::Guard lock(mLock);
  int pos = startPos;
  for (int i = 0; i < NParams() && pos >= 0; ++i) {
    IParam* param = GetParam(i);
    // kept: the first parameter without data becomes 0, so that presets of shorter, older versions
    // sound as they always have.
    double value = 0.0;
    pos = chunk->Get(&value, pos);
    param->Set(value);
    Trace("UnserializeParams", __LINE__, "%d %s %f", i, param->GetNameForHost(), value);
  }
  OnParamReset();
  return pos;
}

bool IPlugBase::CompareState(const double* incomingState, int startPos) {
  for (int i = 0; i < NParams(); ++i) {
    const float mine = static_cast<float>(GetParam(i)->Value());
    const float theirs = static_cast<float>(incomingState[startPos + i]);
    if (!(std::abs(mine - theirs) < 0.00001)) return false;
  }
  return true;
}
