// Any bytes as a program file, for a plug-in with chunks and one without.
#include "fuzz/FuzzPlug.h"
#include "iplug/FxpFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const bool chunks : {false, true}) {
    FuzzPlug plug(chunks);
    const bool taken = plug.ReadProgramFile(data, size);
    ProgramFile program;
    const FxpExpected format{FuzzPlug::kID, kNumParams, chunks};
    if (taken != (ParseProgramFile(data, size, format, &program) == FxpFault::kNone)) {
      std::abort();
    }
    plug.CheckRanges();
    // What it writes itself it reads.
    const std::vector<std::uint8_t> file = plug.ProgramFileBytes();
    if (!plug.ReadProgramFile(file.data(), file.size())) std::abort();
    plug.CheckPresets();
  }
  return 0;
}
