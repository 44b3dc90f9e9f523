// Shared objects that are no VST2 plug-in, each in its own way.
#include "iplug/vst2/vst2.h"

extern "C" __attribute__((visibility("default"))) int SomethingElse() { return 42; }

#if defined(TEST_ENTRY_RETURNS_NULL)
extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback) {
  return nullptr;
}
#elif defined(TEST_ENTRY_RETURNS_ZEROES)
extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback) {
  static AEffect zeroes{};
  return &zeroes;
}
#endif
