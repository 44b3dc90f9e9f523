// The plug-in and the host of the framework's tests.
#include "tests/iplug/TestPlug.h"

#include <cstring>
#include <filesystem>
#include <utility>

namespace {

// Numbers with blanks between.
std::string Words(const char* head, std::initializer_list<int> numbers) {
  std::string text = head;
  for (const int number : numbers) text += " " + std::to_string(number);
  return text;
}

}  // namespace

void Note(const Log& log, const std::string& text) {
  if (log) *log += (log->empty() ? "" : " ") + text;
}

TestPlug::TestPlug(audioMasterCallback callback, const PlugOptions& o)
    : IPlugVST(callback, kNumTestParams, o.channelIO, o.presets, "Probe", "Product", "Maker",
               0x00010203, 0x54657374, 0x4D4D, o.latency, o.midi, o.chunks, o.instrument) {
  GetParam(kLevel)->InitDouble("Level", 2.5, 0, 10, 0.1, "dB");
  GetParam(kCount)->InitInt("Count", 1, -3, 3, "pcs");
  GetParam(kSwitch)->InitBool("Switch", true);
  GetParam(kMode)->InitEnum("Mode", 1, 3, "mode");
  for (const auto& [value, text] : {std::pair{0, "red"}, {1, "green"}, {2, "blue"}})
    GetParam(kMode)->SetDisplayText(value, text);
  GetParam(kTapered)->InitDouble("Tapered", 25, 0, 100, 1, "%");
  GetParam(kTapered)->SetShape(2.0);
  GetParam(kNegated)->InitDouble("Negated", -3, -6, -0.5, 0.01, "dB");
  GetParam(kNegated)->NegateDisplay(true);
}

void TestPlug::ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) {
  if (process) return process(inputs, outputs, nFrames);
  IPlugVST::ProcessDoubleReplacing(inputs, outputs, nFrames);
}

void TestPlug::ProcessMidiMsg(IMidiMsg* msg) {
  Note(log, Words("Midi", {msg->mOffset, msg->mStatus, msg->mData1, msg->mData2}));
}

void TestPlug::ProcessSysEx(ISysEx* msg) {
  Note(log, Words("SysEx", {msg->mOffset, msg->mSize, msg->mData[0]}));
}

bool TestPlug::MidiNoteName(int note, char* name) {
  if (note == 60) std::strcpy(name, "Middle C");
  return note == 60;
}

VstIntPtr FakeHost::Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                             VstIntPtr value, void* ptr, float opt) {
  auto* host = reinterpret_cast<FakeHost*>(effect->resvd1);
  if (!host) return 0;
  const bool locked = static_cast<IPlugVST*>(effect->object)->GetLock().IsMine();
  host->calls.push_back({opcode, index, value, opt, locked});
  host->onCall();
  if (opcode == audioMasterGetProductString) {
    std::strcpy(static_cast<char*>(ptr), host->product.c_str());
  } else if (opcode == audioMasterProcessEvents) {
    const VstEvent* event = static_cast<VstEvents*>(ptr)->events[0];
    const char* bytes = reinterpret_cast<const char*>(event);
    host->eventBytes.assign(bytes, bytes + event->byteSize);
  }
  return host->answers[opcode];
}

Rig::Rig(const PlugOptions& options)
    : plug(std::make_unique<TestPlug>(FakeHost::Callback, options)),
      effect(plug->GetAEffect()),
      log(plug->log) {
  effect->resvd1 = reinterpret_cast<VstIntPtr>(&host);
}

void Rig::Close() {
  plug.release();
  Dispatch(effClose);
}

std::string Rig::TakeLog() { return std::exchange(*log, ""); }

VstIntPtr Rig::SetChunk(std::vector<std::uint8_t> bytes, bool isPreset) {
  const auto size = static_cast<VstIntPtr>(bytes.size());
  bytes.shrink_to_fit();  // to exactly this size, for the address sanitizer
  std::uint8_t none = 0;
  return Dispatch(effSetChunk, isPreset, size, size ? bytes.data() : &none);
}

std::vector<std::uint8_t> Rig::GetChunk(bool isPreset) {
  void* data = nullptr;
  const VstIntPtr size = Dispatch(effGetChunk, isPreset, 0, &data);
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  return {bytes, bytes + size};
}

std::vector<double> Rig::Values() const {
  std::vector<double> values;
  for (int i = 0; i < plug->NParams(); ++i) values.push_back(plug->Value(i));
  return values;
}

void Rig::SetValues(const std::vector<double>& values) {
  for (int i = 0; const double value : values) plug->GetParam(i++)->Set(value);
}

bool Rig::InRange() const {
  double lo = 0;
  double hi = 0;
  for (int i = 0; const double value : Values()) {
    plug->GetParam(i++)->GetBounds(&lo, &hi);
    if (!(value >= lo && value <= hi)) return false;
  }
  return true;
}

void* FakeEditor::OpenWindow(void* parent) {
  Note(mLog, "OpenWindow");
  return parent;
}

void FakeEditor::CloseWindow() {
  Note(mLog, GetPlug()->GetLock().IsMine() ? "CloseWindow" : "CloseUnlocked");
}

void FakeEditor::PromptForFile(HeapString* file, int action, HeapString* dir,
                               const char* extensions) {
  Note(mLog, Words("Prompt", {action}) + " " + extensions + " " + file->Get());
  file->Set(answer.c_str());
  dir->Set("/somewhere/");
}

std::string TempPath(const std::string& name) {
  const auto* info = testing::UnitTest::GetInstance()->current_test_info();
  const std::filesystem::path dir = std::filesystem::path(testing::TempDir()) / "tolmara_iplug" /
                                    (std::string(info->test_suite_name()) + info->name());
  std::filesystem::create_directories(dir);
  const std::filesystem::path path = dir / name;
  std::filesystem::remove_all(path);
  return path.string();
}
