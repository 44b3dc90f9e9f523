// Big-endian fields of program and bank files.
#include "iplug/FxpFormat.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace {

constexpr std::int32_t Magic(const char (&text)[5]) {
  return text[0] << 24 | text[1] << 16 | text[2] << 8 | text[3];
}

constexpr std::int32_t kFile = Magic("CcnK");
constexpr std::int32_t kProgram = Magic("FxCk");
constexpr std::int32_t kProgramChunk = Magic("FPCh");
constexpr std::int32_t kBank = Magic("FxBk");
constexpr std::int32_t kBankChunk = Magic("FBCh");
constexpr std::int32_t kProgramVersion = 1;
constexpr std::int32_t kBankVersion = 2;
constexpr std::size_t kNameSize = 28;
constexpr std::size_t kFutureSize = 124;
constexpr std::size_t kLeastProgram = 16;  // shorter files are no programs
constexpr std::size_t kLeastBank = 4;

// Reads forward. What lies past the end leaves its target alone, and so does all that follows.
class Reader {
 public:
  Reader(const std::uint8_t* data, std::size_t size) : mData(data), mLeft(size) {}

  bool Int(std::int32_t* value) {
    const std::uint8_t* b = Take(4);
    if (!b) return false;
    *value = static_cast<std::int32_t>(std::uint32_t{b[0]} << 24 | std::uint32_t{b[1]} << 16 |
                                       std::uint32_t{b[2]} << 8 | b[3]);
    return true;
  }

  bool Float(float* value) {
    std::int32_t bits = 0;
    if (!Int(&bits)) return false;
    *value = std::bit_cast<float>(bits);
    return true;
  }

  bool Name(std::string* name) {
    const auto* text = reinterpret_cast<const char*>(Take(kNameSize));
    if (text) name->assign(text, strnlen(text, kNameSize - 1));
    return text != nullptr;
  }

  void Skip(std::size_t n) { Take(n); }
  bool IsShort() const { return mShort; }
  std::vector<std::uint8_t> Rest() const { return {mData, mData + mLeft}; }

 private:
  const std::uint8_t* Take(std::size_t n) {
    mShort = mShort || n > mLeft;
    if (mShort) {
      mLeft = 0;
      return nullptr;
    }
    const std::uint8_t* taken = mData;
    mData += n;
    mLeft -= n;
    return taken;
  }

  const std::uint8_t* mData;
  std::size_t mLeft;
  bool mShort = false;  // something was asked for that is not there
};

class Writer {
 public:
  void Int(std::int32_t value) {
    const auto v = static_cast<std::uint32_t>(value);
    for (int shift = 24; shift >= 0; shift -= 8) {
      mBytes.push_back(static_cast<std::uint8_t>(v >> shift));
    }
  }
  void Float(float value) { Int(std::bit_cast<std::int32_t>(value)); }
  void Name(const std::string& name) {
    const std::size_t length = std::min(name.size(), kNameSize - 1);
    mBytes.insert(mBytes.end(), name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length));
    Zeros(kNameSize - length);
  }
  void Zeros(std::size_t n) { mBytes.insert(mBytes.end(), n, 0); }
  void Chunk(const std::vector<std::uint8_t>& chunk) {
    Int(static_cast<std::int32_t>(chunk.size()));
    mBytes.insert(mBytes.end(), chunk.begin(), chunk.end());
  }
  std::vector<std::uint8_t> Take() { return std::move(mBytes); }

 private:
  std::vector<std::uint8_t> mBytes;
};

struct Head {
  std::int32_t chunkMagic = 0;
  std::int32_t byteSize = 0;
  std::int32_t fxMagic = 0;
  std::int32_t version = 0;
  std::int32_t fxID = 0;
  std::int32_t fxVersion = 0;
};

Head ReadHead(Reader* reader) {
  Head head;
  reader->Int(&head.chunkMagic);
  reader->Int(&head.byteSize);
  reader->Int(&head.fxMagic);
  reader->Int(&head.version);
  reader->Int(&head.fxID);
  reader->Int(&head.fxVersion);
  return head;
}

// A field that differs because the file ends before it is a file too short.
FxpFault Differs(const Reader& reader, FxpFault fault) {
  return reader.IsShort() ? FxpFault::kTooShort : fault;
}

// The values, from what follows the name; short files repeat.
void ReadValues(Reader* reader, std::int32_t numParams, std::vector<float>* values) {
  float value = 0.0f;
  values->clear();
  for (std::int32_t i = 0; i < numParams; ++i) {
    reader->Float(&value);
    values->push_back(value);
  }
}

// The start of a program, in a file of its own or within a bank, up to the end of its name.
FxpFault ReadProgramHead(Reader* reader, const FxpExpected& format, bool checkID, Head* head,
                         ProgramFile* program) {
  *head = ReadHead(reader);
  if (head->chunkMagic != kFile) return Differs(*reader, FxpFault::kWrongMagic);
  if (head->version != kProgramVersion) return Differs(*reader, FxpFault::kWrongVersion);
  if (checkID && head->fxID != format.fxID) return Differs(*reader, FxpFault::kOtherPlugin);
  program->fxID = head->fxID;
  program->fxVersion = head->fxVersion;
  reader->Int(&program->numParams);
  if (program->numParams != format.numParams) {
    return Differs(*reader, FxpFault::kWrongParamCount);
  }
  reader->Name(&program->name);
  return FxpFault::kNone;
}

void Report(const Reader& reader, bool* complete) {
  if (complete) *complete = !reader.IsShort();
}

void WriteHead(Writer* writer, std::int32_t byteSize, std::int32_t fxMagic, std::int32_t version,
               std::int32_t fxID, std::int32_t fxVersion) {
  writer->Int(kFile);
  writer->Int(byteSize);
  writer->Int(fxMagic);
  writer->Int(version);
  writer->Int(fxID);
  writer->Int(fxVersion);
}

void WriteProgram(Writer* writer, const ProgramFile& program) {
  const auto chunkSize = static_cast<std::int32_t>(program.chunk.size());
  WriteHead(writer, program.isChunk ? chunkSize + 60 : 0,
            program.isChunk ? kProgramChunk : kProgram, kProgramVersion, program.fxID,
            program.fxVersion);
  writer->Int(program.numParams);
  writer->Name(program.name);
  if (program.isChunk) {
    writer->Chunk(program.chunk);
  } else {
    for (const float value : program.values) writer->Float(value);
  }
}

}  // namespace

const char* FxpFaultText(FxpFault fault) {
  switch (fault) {
    case FxpFault::kNone: return "";
    case FxpFault::kTooShort: return "the file is too short";
    case FxpFault::kWrongMagic: return "wrong magic: this is no preset file of this kind";
    case FxpFault::kWrongVersion: return "a version of the format that is not known";
    case FxpFault::kOtherPlugin: return "another plug-in's id";
    case FxpFault::kWrongParamCount: return "wrong parameter count";
    case FxpFault::kStateChunk: return "a state chunk, which this plug-in does not read";
  }
  return "";
}

FxpFault ParseProgramFile(const std::uint8_t* data, std::size_t size, const FxpExpected& format,
                          ProgramFile* program, bool* complete) {
  *program = {};
  if (size < kLeastProgram) return FxpFault::kTooShort;
  Reader reader(data, size);
  Head head;
  const FxpFault fault = ReadProgramHead(&reader, format, true, &head, program);
  if (fault != FxpFault::kNone) return fault;
  program->isChunk = head.fxMagic == kProgramChunk;
  if (program->isChunk && format.chunks) {
    reader.Skip(4);  // the size, which says no more than the end of the file
    program->chunk = reader.Rest();
  } else if (head.fxMagic != kProgram) {
    return program->isChunk ? FxpFault::kStateChunk : FxpFault::kWrongMagic;
  } else {
    ReadValues(&reader, format.numParams, &program->values);
  }
  Report(reader, complete);
  return FxpFault::kNone;
}

FxpFault ParseBankFile(const std::uint8_t* data, std::size_t size, const FxpExpected& format,
                       BankFile* bank, bool* complete) {
  *bank = {};
  if (size < kLeastBank) return FxpFault::kTooShort;
  Reader reader(data, size);
  const Head head = ReadHead(&reader);
  if (head.chunkMagic != kFile) return FxpFault::kWrongMagic;
  if (head.fxID != format.fxID) return Differs(reader, FxpFault::kOtherPlugin);
  bank->fxID = head.fxID;
  bank->fxVersion = head.fxVersion;
  bank->isChunk = head.fxMagic == kBankChunk;
  if (bank->isChunk ? !format.chunks : head.fxMagic != kBank) {
    return bank->isChunk ? FxpFault::kStateChunk : FxpFault::kWrongMagic;
  }
  reader.Int(&bank->numPrograms);
  reader.Int(&bank->currentProgram);
  reader.Skip(kFutureSize);
  if (bank->isChunk) {
    reader.Skip(4);
    bank->chunk = reader.Rest();
  }
  for (std::int32_t i = 0; i < bank->numPrograms && !bank->isChunk; ++i) {
    ProgramFile program;
    Head entry;
    const FxpFault fault = ReadProgramHead(&reader, format, false, &entry, &program);
    if (fault != FxpFault::kNone) return fault;
    if (entry.fxMagic != kProgram) return FxpFault::kWrongMagic;
    ReadValues(&reader, format.numParams, &program.values);
    bank->programs.push_back(std::move(program));
  }
  Report(reader, complete);
  return FxpFault::kNone;
}

std::vector<std::uint8_t> EncodeProgramFile(const ProgramFile& program) {
  Writer writer;
  WriteProgram(&writer, program);
  return writer.Take();
}

std::vector<std::uint8_t> EncodeBankFile(const BankFile& bank) {
  Writer writer;
  const auto chunkSize = static_cast<std::int32_t>(bank.chunk.size());
  WriteHead(&writer, bank.isChunk ? chunkSize + 160 : 0, bank.isChunk ? kBankChunk : kBank,
            kBankVersion, bank.fxID, bank.fxVersion);
  writer.Int(bank.numPrograms);
  writer.Int(bank.currentProgram);
  writer.Zeros(kFutureSize);
  if (bank.isChunk) {
    writer.Chunk(bank.chunk);
  } else {
    for (const ProgramFile& program : bank.programs) WriteProgram(&writer, program);
  }
  return writer.Take();
}
