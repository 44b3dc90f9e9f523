// The plug-in and the host of the framework's tests.
#include "tests/iplug/TestPlug.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

TestPlug::TestPlug(audioMasterCallback callback, const PlugOptions& o)
    : IPlugVST(callback, kNumTestParams, o.channelIO, o.presets, "Probe", "Product", "Maker",
               o.version, o.uniqueID, 0x4D4D, o.latency, o.midi, o.chunks, o.instrument) {
  GetParam(kLevel)->InitDouble("Level", 2.5, 0, 10, 0.1, "dB");
  GetParam(kCount)->InitInt("Count", 1, -3, 3, "pcs");
  GetParam(kSwitch)->InitBool("Switch", true);
  GetParam(kMode)->InitEnum("Mode", 1, 3, "mode");
  GetParam(kMode)->SetDisplayText(0, "red");
  GetParam(kMode)->SetDisplayText(1, "green");
  GetParam(kMode)->SetDisplayText(2, "blue");
  GetParam(kTapered)->InitDouble("Tapered", 25, 0, 100, 1, "%");
  GetParam(kTapered)->SetShape(2.0);
  GetParam(kNegated)->InitDouble("Negated", -3, -6, -0.5, 0.01, "dB");
  GetParam(kNegated)->NegateDisplay(true);
}

TestPlug::~TestPlug() {
  if (deleted) *deleted = true;
}

void TestPlug::ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) {
  if (process) {
    process(inputs, outputs, nFrames);
  } else {
    IPlugVST::ProcessDoubleReplacing(inputs, outputs, nFrames);
  }
}

void TestPlug::ProcessMidiMsg(IMidiMsg* msg) {
  Note("Midi " + std::to_string(msg->mOffset) + " " + std::to_string(msg->mStatus) + " " +
       std::to_string(msg->mData1) + " " + std::to_string(msg->mData2));
}

void TestPlug::ProcessSysEx(ISysEx* msg) {
  Note("SysEx " + std::to_string(msg->mOffset) + " " + std::to_string(msg->mSize) + " " +
       std::to_string(msg->mData[0]));
}

bool TestPlug::MidiNoteName(int note, char* name) {
  if (note == 60) std::strcpy(name, "Middle C");
  return note == 60;
}

std::string TestPlug::TakeLog() {
  std::string all;
  for (const std::string& entry : log) all += (all.empty() ? "" : " ") + entry;
  log.clear();
  return all;
}

VstIntPtr FakeHost::Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                             VstIntPtr value, void* ptr, float opt) {
  auto* host = reinterpret_cast<FakeHost*>(effect->resvd1);
  if (!host) return 0;
  const bool locked = static_cast<IPlugVST*>(effect->object)->GetLock().IsMine();
  return host->Answer({opcode, index, value, opt, locked}, ptr);
}

VstIntPtr FakeHost::Answer(const HostCall& call, void* ptr) {
  calls.push_back(call);
  if (onCall) onCall(call);
  switch (call.opcode) {
    case audioMasterGetProductString: std::strcpy(static_cast<char*>(ptr), product.c_str()); break;
    case audioMasterGetVendorVersion: return vendorVersion;
    case audioMasterGetTime: return answersTime ? reinterpret_cast<VstIntPtr>(&time) : 0;
    case audioMasterGetCurrentProcessLevel: return processLevel;
    case audioMasterProcessEvents: {
      const VstEvent* event = static_cast<VstEvents*>(ptr)->events[0];
      const char* bytes = reinterpret_cast<const char*>(event);
      eventBytes.assign(bytes, bytes + event->byteSize);
      return eventsAnswer;
    }
    default: break;
  }
  return 0;
}

int FakeHost::Count(int opcode) const {
  return static_cast<int>(std::count_if(
      calls.begin(), calls.end(), [=](const HostCall& call) { return call.opcode == opcode; }));
}

Rig::Rig(const PlugOptions& options)
    : plug(std::make_unique<TestPlug>(FakeHost::Callback, options)), effect(plug->GetAEffect()) {
  effect->resvd1 = reinterpret_cast<VstIntPtr>(&host);
}

VstIntPtr Rig::SetChunk(const std::vector<std::uint8_t>& bytes, bool isPreset) {
  std::vector<std::uint8_t> copy = bytes;  // of exactly this size, for the address sanitizer
  copy.shrink_to_fit();
  std::uint8_t none = 0;
  return Dispatch(effSetChunk, isPreset, static_cast<VstIntPtr>(copy.size()),
                  copy.empty() ? &none : copy.data());
}

std::vector<std::uint8_t> Rig::GetChunk(bool isPreset) {
  void* data = nullptr;
  const VstIntPtr size = Dispatch(effGetChunk, isPreset, 0, &data);
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  return {bytes, bytes + size};
}

std::vector<double> Rig::Values() const {
  std::vector<double> values;
  for (int i = 0; i < plug->NParams(); ++i) values.push_back(plug->GetParam(i)->Value());
  return values;
}

void Rig::SetValues(const std::vector<double>& values) {
  for (int i = 0; i < plug->NParams(); ++i) {
    plug->GetParam(i)->Set(values[static_cast<std::size_t>(i)]);
  }
}

testing::AssertionResult Rig::InRange() const {
  for (int i = 0; i < plug->NParams(); ++i) {
    double lo = 0;
    double hi = 0;
    plug->GetParam(i)->GetBounds(&lo, &hi);
    const double value = plug->GetParam(i)->Value();
    if (value >= lo && value <= hi) continue;
    return testing::AssertionFailure() << "parameter " << i << " is " << value;
  }
  return testing::AssertionSuccess();
}

void* FakeEditor::OpenWindow(void* parent) {
  mPlug->Note("OpenWindow");
  return parent;
}

void FakeEditor::PromptForFile(HeapString* file, int action, HeapString* dir,
                               const char* extensions) {
  mPlug->Note(std::string("Prompt ") + file->Get() + " " + std::to_string(action) + " " +
              extensions);
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
