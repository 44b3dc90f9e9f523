// Any bytes as a bank file, for a plug-in with chunks and one without.
#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const bool chunks : {false, true}) {
    FuzzPlug plug(chunks);
    plug.ReadBankFile(data, size);
    plug.CheckRanges();
    plug.CheckPresets();
    const std::vector<std::uint8_t> file = plug.BankFileBytes();
    if (!plug.ReadBankFile(file.data(), file.size())) std::abort();
    plug.CheckPresets();
  }
  return 0;
}
