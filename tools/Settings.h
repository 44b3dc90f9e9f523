// The options by which every command chooses a plug-in and its settings.
#pragma once
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "tools/PluginHost.h"

struct Settings {
  std::string plugin;             // path, "" for the default
  std::string preset;             // name, "" for none
  std::string presetFile;         // fxp file, "" for none
  std::vector<std::string> sets;  // "Name=value" or "id=value", in order
};

void AddPluginOption(CLI::App& command, Settings& settings);
// All of them: --plugin, --preset, --load-fxp, --set.
void AddSettingsOptions(CLI::App& command, Settings& settings);

std::unique_ptr<PluginHost> OpenPlugin(const Settings& settings);
// Selects the preset, then loads the file, then makes the single settings in their order. Throws
// Failure at the first that cannot be done.
void ApplySettings(PluginHost& host, const Settings& settings);
