// The first byte chooses a parameter, the rest is text typed for it.
#include <string>

#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  FuzzPlug plug;
  std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  plug.Dispatch(effString2Parameter, data[0], 0, text.data());
  plug.CheckRanges();
  // The text that the parameter shows is one that it takes.
  std::vector<char> shown(IParam::kTextSize);
  plug.Dispatch(effGetParamDisplay, data[0], 0, shown.data());
  const bool there = data[0] < kNumParams;
  if ((plug.Dispatch(effString2Parameter, data[0], 0, shown.data()) == 1) != there) std::abort();
  plug.CheckRanges();
  return 0;
}
