// How a row of the parameter table becomes a parameter.
#pragma once

#include "iplug/IParam.h"
#include "plugin/ParamTable.h"

// Before the parameter is shared between threads.
inline void DefineParam(IParam* param, const ParamSpec& spec) {
  const auto whole = [](double value) { return static_cast<int>(value); };
  switch (spec.kind) {
    case ParamKind::Bool:
      param->InitBool(spec.name, spec.defaultValue != 0.0, spec.label, "");
      break;
    case ParamKind::Int:
      param->InitInt(spec.name, whole(spec.defaultValue), whole(spec.min), whole(spec.max),
                     spec.label, "");
      break;
    case ParamKind::Double:
      param->InitDouble(spec.name, spec.defaultValue, spec.min, spec.max, spec.step, spec.label,
                        "");
      break;
  }
}
