// The table of host names.
#include "iplug/vst2/Hosts.h"

#include <algorithm>
#include <string>

#include "iplug/Numbers.h"

namespace {

struct Host {
  const char* mText;  // part of the product string, in lower case
  int mCode;
  const char* mName;
};

// The first text that a product string contains decides.
// clang-format off
constexpr Host kHosts[] = {
    {"cubase", kHostCubase, "Cubase"},
    {"reaper", kHostReaper, "Reaper"},
    {"nuendo", kHostNuendo, "Nuendo"},
    {"cakewalk", kHostSonar, "Sonar"},
    {"samplitude", kHostSamplitude, "Samplitude"},
    {"fruity", kHostFL, "FLStudio"},
    // kept: any product whose name holds these four letters, because hosts that came to be treated
    // so would meet another behaviour.
    {"live", kHostAbletonLive, "Live"},
    {"melodyne", kHostMelodyne, "Unknown"},
    {"vstmanlib", kHostVSTScanner, "VSTScanner"},
    {"aulab", kHostAULab, "AULab"},
    {"garageband", kHostGarageBand, "GarageBand"},
    {"forte", kHostForte, "Forte"},
    {"chainer", kHostChainer, "Chainer"},
    {"audition", kHostAudition, "Audition"},
    {"orion", kHostOrion, "Orion"},
    {"sawstudio", kHostSAWStudio, "SAWStudio"},
    {"logic", kHostLogic, "Logic"},
    {"digital", kHostDigitalPerformer, "DigitalPerformer"},
    {"audiomulch", kHostAudioMulch, "AudioMulch"},
    {"presonus", kHostStudioOne, "StudioOne"},
    {"vst3plugintesthost", kHostVST3TestHost, "VST3PluginTestHost"},
    {"protools", kHostProTools, "ProTools"},
    {"ardour", kHostArdour, "Ardour"},
    {"standalone", kHostStandalone, "Standalone"},
};
// clang-format on

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

int LookUpHost(const char* productString) {
  std::string lower(productString ? productString : "");
  std::transform(lower.begin(), lower.end(), lower.begin(), ToLower);
  for (const Host& host : kHosts) {
    if (lower.find(host.mText) != std::string::npos) return host.mCode;
  }
  return kHostUnknown;
}

void GetHostNameStr(int code, char* name) {
  const char* text = code == kHostVegas ? "Vegas" : "Unknown";  // the table has no row for Vegas
  for (const Host& host : kHosts) {
    if (host.mCode == code) text = host.mName;
  }
  CopyText(name, 32, text);
}
