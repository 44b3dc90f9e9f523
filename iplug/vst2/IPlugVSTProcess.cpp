// The host's audio and parameter calls.
#include <algorithm>
#include <cmath>

#include "iplug/Trace.h"
#include "iplug/vst2/IPlugVST.h"

namespace {

IPlugVST* PlugOf(const AEffect* effect) {
  return effect ? static_cast<IPlugVST*>(effect->object) : nullptr;
}

}  // namespace

// Blocks longer than announced run in pieces, because no buffer here holds more.
template <typename T, typename Run>
void IPlugVST::RunBlocks(T** inputs, T** outputs, int nFrames, Run run) {
  if (nFrames <= 0 || (!inputs && NInChannels() > 0) || (!outputs && NOutChannels() > 0)) return;
  const PlugLock::Guard lock(mLock);
  if (mDoesMidi) CallHost(audioMasterWantMidi);
  for (int offset = 0; offset < nFrames && mBlockSize > 0;) {
    const int n = std::min(mBlockSize, nFrames - offset);
    AttachInputBuffers(0, NInChannels(), inputs, n, offset);
    AttachOutputBuffers(0, NOutChannels(), outputs, offset);
    run(n);
    offset += n;
  }
}

void IPlugVST::Process(AEffect* effect, float** inputs, float** outputs, std::int32_t nFrames) {
  IPlugVST* plug = PlugOf(effect);
  if (!plug) return;
  plug->RunBlocks(inputs, outputs, nFrames,
                  [plug](int n) { plug->ProcessBuffersAccumulating(0.0f, n); });
}

void IPlugVST::ProcessReplacing(AEffect* effect, float** inputs, float** outputs,
                                std::int32_t nFrames) {
  IPlugVST* plug = PlugOf(effect);
  if (!plug) return;
  plug->RunBlocks(inputs, outputs, nFrames, [plug](int n) { plug->ProcessBuffers(0.0f, n); });
}

void IPlugVST::ProcessDouble(AEffect* effect, double** inputs, double** outputs,
                             std::int32_t nFrames) {
  IPlugVST* plug = PlugOf(effect);
  if (!plug) return;
  plug->RunBlocks(inputs, outputs, nFrames, [plug](int n) { plug->ProcessBuffers(0.0, n); });
}

float IPlugVST::GetParameter(AEffect* effect, std::int32_t index) {
  Trace("VSTGetParameter", __LINE__, "%d", index);
  IPlugVST* plug = PlugOf(effect);
  if (!plug) return 0.0f;
  const PlugLock::Guard lock(plug->mLock);
  const IParam* param = plug->GetParam(index);
  return param ? static_cast<float>(param->GetNormalized()) : 0.0f;
}

void IPlugVST::SetParameter(AEffect* effect, std::int32_t index, float value) {
  // NaN counts as 0, for the editor and for the parameter.
  const double normalized = std::isnan(value) ? 0.0 : static_cast<double>(value);
  Trace("VSTSetParameter", __LINE__, "%d:%f", index, normalized);
  IPlugVST* plug = PlugOf(effect);
  if (!plug) return;
  const PlugLock::Guard lock(plug->mLock);
  IParam* param = plug->GetParam(index);
  if (!param) return;
  plug->ShowParameter(index, normalized, true);
  param->SetNormalized(normalized);
  plug->OnParamChange(index);
}
