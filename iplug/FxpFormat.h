// The fxp and fxb files: bytes to fields and back, without a plug-in. Tolmara itself reads no such
// file; its command-line host uses all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// What keeps a file from being read.
enum class FxpFault {
  kNone,
  kTooShort,
  kWrongMagic,
  kWrongVersion,
  kOtherPlugin,
  kWrongParamCount,
  kStateChunk,  // in the chunk form, for a plug-in that does not save chunks
};
// One line for people; "" for kNone.
const char* FxpFaultText(FxpFault fault);

// What a plug-in asks of a file.
struct FxpExpected {
  std::int32_t fxID = 0;
  std::int32_t numParams = 0;
  bool chunks = false;  // the plug-in saves opaque chunks
};

struct ProgramFile {
  std::int32_t fxID = 0;
  std::int32_t fxVersion = 0;
  std::int32_t numParams = 0;
  std::string name;                 // at most 27 characters
  std::vector<float> values;        // normalised, one per parameter, in the regular form
  bool isChunk = false;             // the chunk form
  std::vector<std::uint8_t> chunk;  // host chunk of one preset
};

struct BankFile {
  std::int32_t fxID = 0;
  std::int32_t fxVersion = 0;
  std::int32_t numPrograms = 0;
  std::int32_t currentProgram = -1;   // -1 when a file ends before it
  std::vector<ProgramFile> programs;  // regular form
  bool isChunk = false;               // the chunk form
  std::vector<std::uint8_t> chunk;    // host chunk of a bank
};

// A file that ends inside the parameter values is read: each missing value repeats the one before
// it (0 for the first) and `complete` becomes false. A bank keeps the programs before a fault in
// one. Neither `byteSize` nor `fxVersion` nor the version of a bank is looked at. `complete` may be
// null.
FxpFault ParseProgramFile(const std::uint8_t* data, std::size_t size, const FxpExpected& format,
                          ProgramFile* program, bool* complete = nullptr);
FxpFault ParseBankFile(const std::uint8_t* data, std::size_t size, const FxpExpected& format,
                       BankFile* bank, bool* complete = nullptr);

std::vector<std::uint8_t> EncodeProgramFile(const ProgramFile& program);
std::vector<std::uint8_t> EncodeBankFile(const BankFile& bank);
