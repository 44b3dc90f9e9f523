// Preset and bank files of a loaded effect: what it keeps, and what a file may give it.
#include "tools/host/StateFiles.h"

#include <algorithm>
#include <cstring>

#include "tools/io/Failure.h"
#include "tools/io/InputFile.h"

namespace {

constexpr std::size_t kMarkOffset = 8;  // of the four letters that name the kind

[[noreturn]] void Fail(const std::string& path, const std::string& fault) {
  throw Failure(ExitCode::kInput, path + ": " + fault);
}

FxpExpected FormatOf(const PluginHost& host) {
  return {.fxID = host.UniqueId(), .numParams = host.NumParams(), .chunks = host.KeepsChunks()};
}

void RequireSound(const std::string& path, FxpFault fault, bool complete) {
  if (fault != FxpFault::kNone) Fail(path, FxpFaultText(fault));
  if (!complete) Fail(path, FxpFaultText(FxpFault::kTooShort));
}

void RequirePositions(const std::string& path, const ProgramFile& program) {
  const auto inside = [](float value) { return value >= 0 && value <= 1; };
  if (!std::all_of(program.values.begin(), program.values.end(), inside))
    Fail(path, "a parameter is outside its range");
}

std::string ProgramName(PluginHost& host) {
  const std::vector<std::string> names = host.ProgramNames();
  const auto current = static_cast<std::size_t>(host.Program());
  return current < names.size() ? names[current] : "";
}

ProgramFile RegularProgram(PluginHost& host) {
  ProgramFile program;
  program.fxID = host.UniqueId();
  program.fxVersion = host.Version();
  program.numParams = host.NumParams();
  program.name = ProgramName(host);
  for (int id = 0; id < host.NumParams(); ++id) program.values.push_back(host.Get(id));
  return program;
}

}  // namespace

bool IsBankFile(const std::string& path) {
  const std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  if (bytes.size() < kMarkOffset + 4) return false;
  const auto is = [&](const char* mark) {
    return std::memcmp(bytes.data() + kMarkOffset, mark, 4) == 0;
  };
  return is("FxBk") || is("FBCh");
}

ProgramFile CheckedProgram(const PluginHost& host, const std::string& path) {
  if (IsBankFile(path)) Fail(path, "this is a bank, not a preset");
  const std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  ProgramFile program;
  bool complete = false;
  const FxpFault fault =
      ParseProgramFile(bytes.data(), bytes.size(), FormatOf(host), &program, &complete);
  RequireSound(path, fault, complete);
  RequirePositions(path, program);
  return program;
}

BankFile CheckedBank(const PluginHost& host, const std::string& path) {
  const std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  BankFile bank;
  bool complete = false;
  const FxpFault fault =
      ParseBankFile(bytes.data(), bytes.size(), FormatOf(host), &bank, &complete);
  RequireSound(path, fault, complete);
  for (const ProgramFile& program : bank.programs) RequirePositions(path, program);
  return bank;
}

void UseProgram(PluginHost& host, const ProgramFile& program, const std::string& path) {
  if (program.isChunk && !host.SetChunk(true, program.chunk))
    Fail(path, "the plug-in does not accept its state chunk");
  for (std::size_t id = 0; id < program.values.size(); ++id)
    host.Set(static_cast<int>(id), program.values[id]);
  std::string name = program.name;
  if (!name.empty()) host.Dispatch(effSetProgramName, 0, 0, name.data());
}

void UseBankChunk(PluginHost& host, const BankFile& bank, const std::string& path) {
  if (!host.SetChunk(false, bank.chunk)) Fail(path, "the plug-in does not accept its state chunk");
}

ProgramFile CurrentProgram(PluginHost& host) {
  ProgramFile program = RegularProgram(host);
  if (!host.KeepsChunks()) return program;
  program.isChunk = true;
  program.values.clear();
  program.chunk = host.Chunk(true);
  return program;
}

BankFile WholeBank(PluginHost& host) {
  BankFile bank;
  bank.fxID = host.UniqueId();
  bank.fxVersion = host.Version();
  bank.numPrograms = host.NumPrograms();
  bank.currentProgram = host.Program();
  bank.isChunk = host.KeepsChunks();
  if (bank.isChunk) {
    bank.chunk = host.Chunk(false);
    return bank;
  }
  // The program in force is read first: not every effect keeps its changes when it is left.
  const ProgramFile current = RegularProgram(host);
  for (int i = 0; i < bank.numPrograms; ++i) {
    host.SelectProgram(i);
    bank.programs.push_back(i == bank.currentProgram ? current : RegularProgram(host));
  }
  return bank;
}
