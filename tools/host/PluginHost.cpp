// One VST2 effect, loaded from a shared object and driven through the binary interface alone.
#include "tools/host/PluginHost.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tools/io/Failure.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kPluginFile = "Tolmara.so";
// Effects write more than the interface allows: names of 32 bytes and presets of 256 are common.
constexpr std::size_t kTextSize = 1024;

VstIntPtr AnswerText(void* ptr, const char* text) {
  if (ptr == nullptr) return 0;
  std::strcpy(static_cast<char*>(ptr), text);
  return 1;
}

void AddFolders(std::vector<fs::path>& folders, const char* colonSeparated) {
  std::string rest = colonSeparated == nullptr ? "" : colonSeparated;
  while (!rest.empty()) {
    const std::size_t colon = std::min(rest.find(':'), rest.size());
    if (colon > 0) folders.emplace_back(rest.substr(0, colon));
    rest.erase(0, colon + 1);
  }
}

// Beside the program, the folders of the environment, the usual ones.
std::vector<fs::path> SearchFolders() {
  std::vector<fs::path> folders;
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  if (!program.empty()) folders.push_back(program.parent_path());
  for (const char* const variable : {"VST_PATH", "LXVST_PATH"}) {
    AddFolders(folders, std::getenv(variable));
  }
  if (const char* const home = std::getenv("HOME")) {
    folders.push_back(fs::path(home) / ".vst");
    folders.push_back(fs::path(home) / ".lxvst");
  }
  for (const char* const usual :
       {"/usr/local/lib/vst", "/usr/local/lib/lxvst", "/usr/lib/vst", "/usr/lib/lxvst"})
    folders.emplace_back(usual);
  return folders;
}

// The plug-in in the folder or in a folder of any name directly in it; empty if it is in none.
fs::path FindBelow(const fs::path& folder) {
  std::error_code ignored;
  std::vector<fs::path> places = {folder};
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
    if (entry.is_directory(ignored)) places.push_back(entry.path());
  }
  std::sort(places.begin() + 1, places.end());
  for (const fs::path& place : places) {
    if (fs::is_regular_file(place / kPluginFile, ignored)) return place / kPluginFile;
  }
  return {};
}

}  // namespace

void PluginHost::SharedObject::operator()(void* handle) const { dlclose(handle); }

std::string PluginHost::FindDefault() {
  for (const fs::path& folder : SearchFolders()) {
    const fs::path file = FindBelow(folder);
    if (!file.empty()) return file.string();
  }
  throw Failure(ExitCode::kPlugin, std::string(kPluginFile) +
                                       " is neither beside this program nor in a folder for VST2 "
                                       "plug-ins; name it with --plugin");
}

PluginHost::PluginHost(const std::string& path) : mPath(path) {
  std::error_code error;
  const fs::path absolute = fs::canonical(path, error);
  if (error) throw Failure(ExitCode::kPlugin, "cannot load " + path + ": " + error.message());
  mObject.reset(dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!mObject) {
    const char* const reason = dlerror();
    throw Failure(ExitCode::kPlugin, "cannot load " + path + ": " + (reason ? reason : "unknown"));
  }
  void* entry = dlsym(mObject.get(), "VSTPluginMain");
  if (entry == nullptr) entry = dlsym(mObject.get(), "main");  // the name in older effects
  Require(entry != nullptr, "is no VST2 plug-in: it exports neither VSTPluginMain nor main");
  Open(reinterpret_cast<EntryPoint>(entry));
}

PluginHost::PluginHost(const std::string& name, EntryPoint entry) : mPath(name) { Open(entry); }

void PluginHost::Open(EntryPoint entry) {
  mEffect = entry(&PluginHost::Answer);
  Require(mEffect != nullptr, "refused to make an effect");
  const bool whole = mEffect->magic == kEffectMagic && mEffect->dispatcher != nullptr &&
                     mEffect->setParameter != nullptr && mEffect->getParameter != nullptr;
  Require(whole, "is no VST2 plug-in: what its entry point returns is no effect");
  mEffect->resvd1 = reinterpret_cast<VstIntPtr>(this);
  Dispatch(effOpen);
}

PluginHost::~PluginHost() {
  if (mRunning) Dispatch(effMainsChanged, 0, 0);
  Dispatch(effClose);
}

void PluginHost::Require(bool condition, const std::string& lack) const {
  if (!condition) throw Failure(ExitCode::kPlugin, mPath + " " + lack);
}

std::string PluginHost::EffectName() {
  const std::string name = Text(effGetEffectName);
  return name.empty() ? fs::path(mPath).stem().string() : name;
}

VstIntPtr PluginHost::Dispatch(std::int32_t opcode, std::int32_t index, VstIntPtr value, void* ptr,
                               float opt) {
  return mEffect->dispatcher(mEffect, opcode, index, value, ptr, opt);
}

std::string PluginHost::Text(std::int32_t opcode, std::int32_t index, VstIntPtr value, float opt,
                             VstIntPtr* told) {
  char text[kTextSize] = "";
  const VstIntPtr result = Dispatch(opcode, index, value, text, opt);
  if (told != nullptr) *told = result;
  text[kTextSize - 1] = '\0';
  return text;
}

std::vector<std::string> PluginHost::ProgramNames() {
  std::vector<std::string> names;
  const int current = Program();
  for (int i = 0; i < NumPrograms(); ++i) {
    std::string name = Text(effGetProgramNameIndexed, i, -1);
    if (name.empty() && i == current) name = Text(effGetProgramName);
    names.push_back(name);
  }
  return names;
}

void PluginHost::SelectProgram(int index) {
  Dispatch(effBeginSetProgram);
  Dispatch(effSetProgram, 0, index);
  Dispatch(effEndSetProgram);
}

std::vector<std::uint8_t> PluginHost::Chunk(bool program) {
  std::uint8_t* data = nullptr;  // stays the effect's
  const VstIntPtr size = Dispatch(effGetChunk, program ? 1 : 0, 0, &data);
  if (data == nullptr || size <= 0) return {};
  return {data, data + size};
}

bool PluginHost::SetChunk(bool program, std::vector<std::uint8_t> chunk) {
  const auto size = static_cast<VstIntPtr>(chunk.size());
  return Dispatch(effSetChunk, program ? 1 : 0, size, chunk.data()) != 0;
}

void PluginHost::Configure(double rate, int block) {
  if (mRunning) Dispatch(effMainsChanged, 0, 0);
  mRate = rate;
  mBlock = block;
  Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
  Dispatch(effSetBlockSize, 0, block);
  Dispatch(effMainsChanged, 0, 1);
  mRunning = true;
}

void PluginHost::Connect(int channels) {
  Require(NumInputs() > 0, "is no effect: it has no inputs");
  Require(NumInputs() >= channels && NumOutputs() >= channels,
          "cannot take sound of " + std::to_string(channels) + " channels");
  Require(HasFlag(effFlagsCanReplacing) && mEffect->processReplacing != nullptr,
          "cannot process in place of its input");
  VstSpeakerArrangement arrangement{};
  arrangement.type = channels - 1;  // 0 is mono, 1 is stereo
  arrangement.numChannels = channels;
  Dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&arrangement), &arrangement);
}

void PluginHost::Process(double** inputs, double** outputs, int frames) {
  if (HasFlag(effFlagsCanDoubleReplacing) && mEffect->processDoubleReplacing != nullptr)
    mEffect->processDoubleReplacing(mEffect, inputs, outputs, frames);
  else
    ProcessAsFloat(inputs, outputs, frames);
}

void PluginHost::ProcessAsFloat(double** inputs, double** outputs, int frames) {
  const auto length = static_cast<std::size_t>(frames);
  const auto numInputs = static_cast<std::size_t>(NumInputs());
  const auto numChannels = numInputs + static_cast<std::size_t>(NumOutputs());
  mSingle.resize(numChannels * length);
  std::vector<float*> channels(numChannels);
  for (std::size_t c = 0; c < numChannels; ++c) channels[c] = mSingle.data() + c * length;
  for (std::size_t c = 0; c < numInputs; ++c)
    std::transform(inputs[c], inputs[c] + frames, channels[c],
                   [](double x) { return static_cast<float>(x); });
  float** const results = channels.data() + numInputs;
  mEffect->processReplacing(mEffect, channels.data(), results, frames);
  for (std::size_t c = 0; c < numChannels - numInputs; ++c)
    std::copy(results[c], results[c] + frames, outputs[c]);
}

// What an effect may ask of its host. It can ask before it is known, from inside VSTPluginMain.
VstIntPtr PluginHost::Answer(AEffect* effect, std::int32_t opcode, std::int32_t, VstIntPtr,
                             void* ptr, float) {
  const auto* const host =
      effect == nullptr ? nullptr : reinterpret_cast<const PluginHost*>(effect->resvd1);
  switch (opcode) {
    case audioMasterVersion: return 2400;
    case audioMasterGetSampleRate: return host == nullptr ? 0 : static_cast<VstIntPtr>(host->mRate);
    case audioMasterGetBlockSize: return host == nullptr ? 0 : host->mBlock;
    case audioMasterGetCurrentProcessLevel: return kVstProcessLevelOffline;
    case audioMasterGetVendorString:
    case audioMasterGetProductString: return AnswerText(ptr, "tolmara");
    case audioMasterGetVendorVersion: return 10000;
    default: return 0;
  }
}
