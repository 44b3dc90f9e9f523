// The two exported entry points of the module.
#include "iplug/vst2/IPlugVST.h"
#include "plugin/Tolmara.h"

#define TOLMARA_EXPORT extern "C" __attribute__((visibility("default")))

// Constructs an instance and returns its record, or null if it could not be made. Any thread:
// instances are constructed one at a time.
TOLMARA_EXPORT AEffect* VSTPluginMain(audioMasterCallback hostCallback) {
  return ConstructUnderLock(
      [](audioMasterCallback callback) -> IPlugVST* { return new Tolmara(callback); },
      hostCallback);
}

// Older hosts look for `main`, a name that the language keeps for programs.
TOLMARA_EXPORT AEffect* ForwardingMain(audioMasterCallback hostCallback) asm("main");
AEffect* ForwardingMain(audioMasterCallback hostCallback) { return VSTPluginMain(hostCallback); }
