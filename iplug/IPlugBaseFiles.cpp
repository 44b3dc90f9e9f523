// Preset files of a plug-in: its state into the files' fields and back.
#include <algorithm>

#include "iplug/FileBytes.h"
#include "iplug/FxpFormat.h"
#include "iplug/IPlugBase.h"

namespace {

constexpr int kOpen = 0;  // actions of the file dialog
constexpr int kSave = 1;

std::vector<std::uint8_t> Bytes(const ByteChunk& chunk) {
  const auto* data = static_cast<const std::uint8_t*>(chunk.GetBytes());
  return {data, data + chunk.Size()};
}

// The chunk of a file and where its state begins: after the header, if it has one.
struct FileChunk {
  explicit FileChunk(const std::vector<std::uint8_t>& bytes) {
    mChunk.PutBytes(bytes.data(), static_cast<int>(bytes.size()));
    GetIPlugVerFromChunk(&mChunk, &mPos);
  }
  ByteChunk mChunk;
  int mPos = 0;
};

}  // namespace

void IPlugBase::StoreValues(const std::vector<float>& normalized) {
  for (int i = 0; i < NParams(); ++i) {
    // A damaged file must not put a parameter below its range; above it SetNormalized clamps.
    const double value = static_cast<double>(normalized[static_cast<std::size_t>(i)]);
    GetParam(i)->SetNormalized(std::max(0.0, value));
  }
}

std::vector<std::uint8_t> IPlugBase::ProgramFileBytes() {
  const PlugLock::Guard lock(mLock);
  ProgramFile program;
  program.fxID = mUniqueID;
  program.fxVersion = GetEffectVersion(true);
  program.numParams = NParams();
  program.name = GetPresetName(mCurrentPresetIdx);
  program.isChunk = mStateChunks;
  if (mStateChunks) {
    ByteChunk chunk;
    InitChunkWithIPlugVer(&chunk);
    SerializeState(&chunk);
    program.chunk = Bytes(chunk);
  } else {
    for (const IParam* param : mParams) {
      program.values.push_back(static_cast<float>(param->GetNormalized()));
    }
  }
  return EncodeProgramFile(program);
}

std::vector<std::uint8_t> IPlugBase::BankFileBytes() {
  const PlugLock::Guard lock(mLock);
  BankFile bank;
  bank.fxID = mUniqueID;
  bank.fxVersion = GetEffectVersion(true);
  bank.numPrograms = NPresets();
  bank.currentProgram = mCurrentPresetIdx;
  bank.isChunk = mStateChunks;
  if (mStateChunks) {
    ByteChunk chunk;
    InitChunkWithIPlugVer(&chunk);
    SerializePresets(&chunk);
    bank.chunk = Bytes(chunk);
    return EncodeBankFile(bank);
  }
  for (const IPreset* preset : mPresets) {
    ProgramFile& program = bank.programs.emplace_back();
    program.fxID = bank.fxID;
    program.fxVersion = bank.fxVersion;
    program.numParams = NParams();
    program.name = preset->mName;
    int pos = 0;
    for (const IParam* param : mParams) {
      double value = 0.0;
      pos = preset->mChunk.Get(&value, pos);
      program.values.push_back(static_cast<float>(param->GetNormalized(value)));
    }
  }
  return EncodeBankFile(bank);
}

bool IPlugBase::ReadProgramFile(const std::uint8_t* data, std::size_t size) {
  ProgramFile program;
  const FxpExpected format{mUniqueID, NParams(), mStateChunks};
  if (ParseProgramFile(data, size, format, &program) != FxpFault::kNone) return false;
  {
    const PlugLock::Guard lock(mLock);
    if (program.isChunk) {
      FileChunk chunk(program.chunk);
      UnserializeState(&chunk.mChunk, chunk.mPos);
      ModifyCurrentPreset(program.name.c_str());
    } else {
      StoreValues(program.values);
      ModifyCurrentPreset(program.name.c_str());
      RestorePreset(mCurrentPresetIdx);
    }
  }
  InformHostOfProgramChange();
  return true;
}

bool IPlugBase::ReadBankFile(const std::uint8_t* data, std::size_t size) {
  BankFile bank;
  const FxpExpected format{mUniqueID, NParams(), mStateChunks};
  const FxpFault fault = ParseBankFile(data, size, format, &bank);
  // kept: a file too short for any test counts as a bank without programs. Users load such a file
  // to get the current program back as it was saved.
  const bool empty = size < 4;
  {
    const PlugLock::Guard lock(mLock);
    if (bank.isChunk && fault == FxpFault::kNone) {
      FileChunk chunk(bank.chunk);
      UnserializePresets(&chunk.mChunk, chunk.mPos);
    } else {
      // kept: the programs before a damaged one are stored although the bank is refused, so that
      // users can rescue them from the damaged file.
      for (int i = 0; i < static_cast<int>(bank.programs.size()); ++i) {
        const ProgramFile& program = bank.programs[static_cast<std::size_t>(i)];
        RestorePreset(i);
        StoreValues(program.values);
        ModifyCurrentPreset(program.name.c_str());
      }
      if (fault != FxpFault::kNone && !empty) return false;
      RestorePreset(bank.currentProgram < 0 ? mCurrentPresetIdx : bank.currentProgram);
    }
  }
  InformHostOfProgramChange();
  return true;
}

bool IPlugBase::SaveProgramToFile(const char* path) {
  const std::vector<std::uint8_t> bytes = ProgramFileBytes();
  return WriteFileBytes(path, bytes.data(), bytes.size());
}

bool IPlugBase::SaveBankToFile(const char* path) {
  const std::vector<std::uint8_t> bytes = BankFileBytes();
  return WriteFileBytes(path, bytes.data(), bytes.size());
}

bool IPlugBase::LoadProgramFromFile(const char* path) {
  std::vector<std::uint8_t> bytes;
  return ReadFileBytes(path, &bytes) && ReadProgramFile(bytes.data(), bytes.size());
}

bool IPlugBase::LoadBankFromFile(const char* path) {
  std::vector<std::uint8_t> bytes;
  return ReadFileBytes(path, &bytes) && ReadBankFile(bytes.data(), bytes.size());
}

bool IPlugBase::SaveProgramAsFXP(const char* defaultFileName) {
  HeapString path;
  return PromptForPresetFile(defaultFileName, kSave, "fxp", &path) && SaveProgramToFile(path.Get());
}

bool IPlugBase::SaveBankAsFXB(const char* defaultFileName) {
  HeapString path;
  return PromptForPresetFile(defaultFileName, kSave, "fxb", &path) && SaveBankToFile(path.Get());
}

bool IPlugBase::LoadProgramFromFXP() {
  HeapString path;
  return PromptForPresetFile("", kOpen, "fxp", &path) && LoadProgramFromFile(path.Get());
}

bool IPlugBase::LoadBankFromFXB() {
  HeapString path;
  return PromptForPresetFile("", kOpen, "fxb", &path) && LoadBankFromFile(path.Get());
}
