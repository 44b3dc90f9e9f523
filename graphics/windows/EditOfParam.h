// An edit of a parameter, announced to the host.
#pragma once

#include "iplug/IPlugBase.h"

// Tells the host that an edit begins and, at the end of the scope, that it ended. Nothing without
// a parameter.
class EditOfParam {
 public:
  EditOfParam(IPlugBase* plug, int paramIdx)
      : mPlug(paramIdx >= 0 ? plug : nullptr), mIdx(paramIdx) {
    if (mPlug) mPlug->BeginInformHostOfParamChange(mIdx);
  }
  ~EditOfParam() {
    if (mPlug) mPlug->EndInformHostOfParamChange(mIdx);
  }
  EditOfParam(const EditOfParam&) = delete;
  EditOfParam& operator=(const EditOfParam&) = delete;

 private:
  IPlugBase* mPlug;
  int mIdx;
};
