// One preset slot. Tolmara uses all of it.
#pragma once

#include "iplug/ByteChunk.h"
#include "iplug/Numbers.h"

struct IPreset {
  static constexpr int kNameSize = 256;

  explicit IPreset(const char* name) { SetName(name); }
  void SetName(const char* name) { CopyText(mName, name); }  // cut to 255 characters

  bool mInitialized = false;  // holds data
  char mName[kNameSize] = {};
  ByteChunk mChunk;  // parameter state without header
};
