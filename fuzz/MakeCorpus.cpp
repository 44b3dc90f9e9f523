// Writes the seeds of the framework's fuzz targets: MakeCorpus <folder>, as in fuzz/corpus.
#include <cstring>
#include <filesystem>
#include <string>

#include "fuzz/FuzzPlug.h"
#include "iplug/Base64.h"
#include "iplug/FileBytes.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Join(int first, const void* rest, std::size_t size) {
  const auto* bytes = static_cast<const std::uint8_t*>(rest);
  Bytes joined{static_cast<std::uint8_t>(first)};
  joined.insert(joined.end(), bytes, bytes + size);
  return joined;
}

class Corpus {
 public:
  explicit Corpus(std::filesystem::path root) : mRoot(std::move(root)) {}

  void Write(const char* target, const std::string& name, const Bytes& bytes) {
    const std::filesystem::path folder = mRoot / target;
    std::filesystem::create_directories(folder);
    mWritten = WriteFileBytes((folder / name).c_str(), bytes.data(), bytes.size()) && mWritten;
  }
  bool Written() const { return mWritten; }

 private:
  std::filesystem::path mRoot;
  bool mWritten = true;
};

void WriteStates(Corpus& corpus) {
  for (const bool chunks : {false, true}) {
    const std::string form = chunks ? "chunk" : "regular";
    FuzzPlug plug(chunks);
    plug.ModifyCurrentPreset("A preset");
    corpus.Write("Fxp", form + ".fxp", plug.ProgramFileBytes());
    corpus.Write("Fxb", form + ".fxb", plug.BankFileBytes());
    if (chunks) continue;
    const Bytes state = plug.GetChunk(true);
    corpus.Write("StateChunk", "preset", state);
    corpus.Write("StateChunk", "headerless", {state.begin() + 8, state.end()});
    corpus.Write("BankChunk", "bank", plug.GetChunk(false));
    corpus.Write("BankChunk", "headerless", {state.begin() + 8, state.end()});
    const std::string text = Base64Encode(state.data(), state.size());
    corpus.Write("Base64", "state", Join(255, text.data(), text.size()));
  }
}

void WriteParameters(Corpus& corpus) {
  const struct {
    int id;
    const char* text;
  } kTexts[] = {{kTimeStretch, "1.25"}, {kGain, "-6 dB"},   {kPan, " +3e1"},
                {kRenderMode, "Fast"},  {kFirstDim, "on"},  {kLowCutFreq, "120"},
                {kMix, "inf"},          {kHighDecay, "nan"}};
  for (const auto& entry : kTexts) {
    corpus.Write("StringToParameter", std::string("id") + std::to_string(entry.id),
                 Join(entry.id, entry.text, std::strlen(entry.text)));
  }
  for (const int id : {int{kTimeDelay}, int{kTimeStretch}, int{kGain}, int{kRenderMode}}) {
    std::uint8_t values[sizeof(double) + sizeof(float)];
    const double value = 0.75 * id;
    const float normalized = 0.25F;
    std::memcpy(values, &value, sizeof value);
    std::memcpy(values + sizeof value, &normalized, sizeof normalized);
    corpus.Write("ParameterDisplay", std::string("id") + std::to_string(id),
                 Join(id, values, sizeof values));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  Corpus corpus(argv[1]);
  WriteStates(corpus);
  WriteParameters(corpus);
  return corpus.Written() ? 0 : 1;
}
