// A parameter and any floats as its value: every text fits its buffer, and a good value restores
// the parameter.
#include <cstring>

#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  double value = 0.0;
  float normalized = 0.0f;
  if (size < 1 + sizeof value + sizeof normalized) return 0;
  std::memcpy(&value, data + 1, sizeof value);
  std::memcpy(&normalized, data + 1 + sizeof value, sizeof normalized);
  FuzzPlug plug;
  const int id = data[0] % kNumParams;
  // In a buffer of the promised size, so that a byte too many is found.
  std::vector<char> text(IParam::kTextSize);
  for (const int flags : {0, 1, 2, 3}) {
    plug.GetParam(id)->GetDisplayForHost(value, flags & 1, text.data(), flags & 2);
    if (strnlen(text.data(), text.size()) == text.size()) std::abort();
  }
  plug.Dispatch(effVendorSpecific, 7, id, text.data(), normalized);
  AEffect* effect = plug.GetAEffect();
  effect->setParameter(effect, id, normalized);
  plug.Dispatch(effGetParamDisplay, id, 0, text.data());
  plug.Dispatch(effGetParamLabel, id, 0, text.data());
  const float told = effect->getParameter(effect, id);
  if (!(told >= 0.0f && told <= 1.0f)) std::abort();
  effect->setParameter(effect, id, 0.5f);
  plug.CheckRanges();
  return 0;
}
