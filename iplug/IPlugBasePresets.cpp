// Preset slots: filling, restoring and updating them, and the bank as bytes.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

#include "iplug/Base64.h"
#include "iplug/IPlugBase.h"
#include "iplug/Trace.h"

namespace {

constexpr char kUserPreset[] = "user preset";

// A value that no parameter of use has: it marks the entries that a call does not name.
constexpr double kNotNamed = 9.999e-8;

// The next variable argument, by the parameter's kind.
double NextValue(const IParam* param, va_list* args) {
  return param->Type() == kTypeDouble ? va_arg(*args, double) : va_arg(*args, int);
}

}  // namespace

IPreset* IPlugBase::FirstFreePreset() {
  for (IPreset* preset : mPresets) {
    if (!preset->mInitialized) return preset;
  }
  return nullptr;
}

IPreset* IPlugBase::ClaimPreset(const char* name) {
  IPreset* preset = FirstFreePreset();
  if (!preset) return nullptr;
  preset->mInitialized = true;
  preset->SetName(name);
  preset->mChunk.Clear();
  return preset;
}

void IPlugBase::MakeDefaultPreset(const char* name, int nPresets) {
  for (int i = 0; i < nPresets; ++i) {
    IPreset* preset = ClaimPreset(name ? name : "Empty");
    if (!preset) return;
    SerializeState(&preset->mChunk);
  }
}

void IPlugBase::MakeEmptyPresets() { MakeDefaultPreset("Empty", NPresets()); }

void IPlugBase::MakePreset(const char* name, ...) {
  std::vector<double> values;
  va_list args;
  va_start(args, name);
  for (const IParam* param : mParams) values.push_back(NextValue(param, &args));
  va_end(args);
  MakePresetFromValues(name, values.data());
}

void IPlugBase::MakePresetFromValues(const char* name, const double* values) {
  IPreset* preset = ClaimPreset(name);
  if (!preset) return;
  for (int i = 0; i < NParams(); ++i) preset->mChunk.Put(&values[i]);
}

void IPlugBase::MakePresetFromNamedParams(const char* name, int nParamsNamed, ...) {
  std::vector<double> values(static_cast<std::size_t>(NParams()), kNotNamed);
  va_list args;
  va_start(args, nParamsNamed);
  for (int i = 0; i < nParamsNamed; ++i) {
    const int idx = va_arg(args, int);
    const IParam* param = GetParam(idx);
    if (!param) break;  // the kind of what follows is not known
    values[static_cast<std::size_t>(idx)] = NextValue(param, &args);
  }
  va_end(args);
  for (int i = 0; i < NParams(); ++i) {
    double& value = values[static_cast<std::size_t>(i)];
    if (value == kNotNamed) value = GetParam(i)->Value();
  }
  MakePresetFromValues(name, values.data());
}

void IPlugBase::MakePresetFromChunk(const char* name, ByteChunk* chunk) {
  if (IPreset* preset = ClaimPreset(name)) preset->mChunk.PutChunk(chunk);
}

void IPlugBase::MakePresetFromBlob(const char* name, const char* blob, int sizeOfChunk) {
  ByteChunk chunk;
  chunk.Resize(sizeOfChunk);
  Base64Decode(blob, static_cast<std::uint8_t*>(chunk.GetBytes()),
               static_cast<std::size_t>(chunk.Size()));
  MakePresetFromChunk(name, &chunk);
}

void IPlugBase::PruneUninitializedPresets() {
  for (int i = NPresets() - 1; i >= 0; --i) {
    if (!mPresets.Get(i)->mInitialized) mPresets.Delete(i, true);
  }
}

void IPlugBase::MakeDefaultUserPresetName(IPreset* preset) const {
  int n = 1;
  for (const IPreset* other : mPresets) n += std::strstr(other->mName, kUserPreset) != nullptr;
  std::snprintf(preset->mName, sizeof preset->mName, "%s %d", kUserPreset, n);
}

bool IPlugBase::RestorePreset(int idx) {
  IPreset* preset = mPresets.Get(idx);
  if (!preset) return false;
  if (!preset->mInitialized) {
    // An empty slot takes the present sound.
    preset->mInitialized = true;
    MakeDefaultUserPresetName(preset);
    preset->mChunk.Clear();
    if (!SerializeState(&preset->mChunk)) return false;
  } else if (UnserializeState(&preset->mChunk, 0) < 1) {
    return false;
  }
  mCurrentPresetIdx = idx;
  OnPresetsChanged();
  RedrawParamControls();
  return true;
}

bool IPlugBase::RestorePreset(const char* name) {
  if (!name || !*name) return false;
  for (int i = 0; i < NPresets(); ++i) {
    if (std::strcmp(mPresets.Get(i)->mName, name) == 0) return RestorePreset(i);
  }
  return false;
}

const char* IPlugBase::GetPresetName(int idx) const {
  const IPreset* preset = mPresets.Get(idx);
  return preset ? preset->mName : "";
}

void IPlugBase::ModifyCurrentPreset(const char* name) {
  IPreset* preset = mPresets.Get(mCurrentPresetIdx);
  if (!preset) return;
  preset->mChunk.Clear();
  Trace("ModifyCurrentPreset", __LINE__, "%d %s", mCurrentPresetIdx, preset->mName);
  SerializeState(&preset->mChunk);
  if (name && *name) preset->SetName(name);
}

bool IPlugBase::SerializePresets(ByteChunk* chunk) {
  bool saved = true;
  for (int i = 0; i < NPresets() && saved; ++i) {
    const IPreset* preset = mPresets.Get(i);
    Trace("SerializePresets", __LINE__, "%d %s", i, preset->mName);
    chunk->PutStr(preset->mName);
    chunk->Put(&preset->mInitialized);
    if (preset->mInitialized) saved = chunk->PutChunk(&preset->mChunk) > 0;
  }
  return saved;
}

int IPlugBase::UnserializePresets(ByteChunk* chunk, int startPos) {
  // kept: a preset saved without a name takes that of the preset before it, because hosts show and
  // store these names for saved banks.
  HeapString name;
  int pos = startPos;
  for (int i = 0; i < NPresets() && pos >= 0; ++i) {
    IPreset* preset = mPresets.Get(i);
    pos = chunk->GetStr(&name, pos);
    preset->SetName(name.Get());
    Trace("UnserializePresets", __LINE__, "%d %s", i, preset->mName);
    std::uint8_t flag = preset->mInitialized;
    pos = chunk->Get(&flag, pos);
    preset->mInitialized = flag != 0;
    if (!preset->mInitialized) continue;
    pos = UnserializeState(chunk, pos);
    if (pos > 0) {
      // In the present form: a short preset comes out with all parameters.
      preset->mChunk.Clear();
      SerializeState(&preset->mChunk);
    }
  }
  RestorePreset(mCurrentPresetIdx);
  return pos;
}
