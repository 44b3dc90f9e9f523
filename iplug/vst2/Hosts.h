// The hosts that the plug-in recognises by their product strings. Tolmara uses the codes of hosts
// that need another treatment, but shows no host name.
#pragma once

enum EHost {
  kHostUninit = -1,  // not asked yet
  kHostUnknown = 0,
  kHostReaper = 1,
  kHostProTools = 2,
  kHostCubase = 3,
  kHostNuendo = 4,
  kHostSonar = 5,
  kHostVegas = 6,
  kHostFL = 7,
  kHostSamplitude = 8,
  kHostAbletonLive = 9,
  kHostMelodyne = 12,
  kHostVSTScanner = 13,
  kHostAULab = 14,
  kHostForte = 15,
  kHostChainer = 16,
  kHostAudition = 17,
  kHostOrion = 18,
  kHostSAWStudio = 20,
  kHostLogic = 21,
  kHostGarageBand = 22,
  kHostDigitalPerformer = 23,
  kHostStandalone = 24,
  kHostAudioMulch = 25,
  kHostStudioOne = 26,
  kHostVST3TestHost = 27,
  kHostArdour = 28
};

// The code of the host with this product string; case does not matter.
int LookUpHost(const char* productString);
// Writes the display name, at most 32 bytes.
void GetHostNameStr(int code, char* name);
