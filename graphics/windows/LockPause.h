// Giving up the plug-in lock during a wait.
#pragma once

#include <optional>

#include "iplug/IPlugBase.h"

// Gives up what this thread holds of the lock for a scope. Nothing without a plug-in.
class LockPause {
 public:
  explicit LockPause(IPlugBase* plug) {
    if (plug) mPause.emplace(plug->GetLock());
  }

 private:
  std::optional<PlugLock::Pause> mPause;
};
