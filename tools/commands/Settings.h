// The options by which every command chooses a plug-in and its settings.
#pragma once
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "tools/host/PluginHost.h"

struct Settings {
  std::string plugin;             // path, "" for the default
  std::string preset;             // name, "" for none
  std::string presetFile;         // fxp file, "" for none
  std::vector<std::string> sets;  // "Name=value" or "id=value", in order
};

// What commands that process sound have in common.
struct SoundOptions {
  std::string output;
  std::string depth;  // "" for the command's own choice
  int block = 512;    // announced, frames
  bool quiet = false;
};

void AddPluginOption(CLI::App& command, Settings& settings);
// Those that make values: --preset, --load-fxp, --set.
void AddValueOptions(CLI::App& command, Settings& settings);
// All of them: --plugin, --preset, --load-fxp, --set.
void AddSettingsOptions(CLI::App& command, Settings& settings);
// OUT, --depth, --block, --quiet; `depth` says what the command chooses itself.
void AddSoundOptions(CLI::App& command, SoundOptions& options, const std::string& depth);

std::unique_ptr<PluginHost> OpenPlugin(const Settings& settings);
// Selects the preset, then loads the file, then makes the single settings in their order. Throws
// Failure at the first that cannot be done.
void ApplySettings(PluginHost& host, const Settings& settings);
