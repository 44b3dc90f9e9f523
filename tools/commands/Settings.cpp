// The options by which every command chooses a plug-in and its settings.
#include "tools/commands/Settings.h"

#include <algorithm>
#include <charconv>

#include "tools/host/Parameters.h"
#include "tools/host/StateFiles.h"
#include "tools/io/Failure.h"
#include "tools/io/Nearest.h"

namespace {

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// -1 for a text that is no whole number.
int NumberIn(const std::string& text) {
  int number = -1;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && last == end ? number : -1;
}

void SelectPreset(PluginHost& host, const std::string& name) {
  const std::vector<std::string> names = host.ProgramNames();
  const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& candidate) {
    return EqualWithoutCase(candidate, name);
  });
  const int index = found == names.end() ? NumberIn(name) : static_cast<int>(found - names.begin());
  if (index < 0 || index >= host.NumPrograms())
    throw Failure(ExitCode::kSetting,
                  "no preset is called \"" + name + "\"" + Suggestion(name, names));
  host.SelectProgram(index);
}

void MakeSetting(PluginHost& host, const std::string& setting) {
  const std::size_t equals = setting.find('=');
  if (equals == std::string::npos)
    throw Failure(ExitCode::kUsage, "--set wants \"Name=value\", not \"" + setting + "\"");
  const int id = FindParameter(host, Trimmed(setting.substr(0, equals)));
  SetParameter(host, id, Trimmed(setting.substr(equals + 1)));
}

}  // namespace

void AddPluginOption(CLI::App& command, Settings& settings) {
  command.add_option("--plugin", settings.plugin, "the VST2 plug-in to load")->type_name("PATH");
}

void AddSettingsOptions(CLI::App& command, Settings& settings) {
  AddPluginOption(command, settings);
  AddValueOptions(command, settings);
}

void AddValueOptions(CLI::App& command, Settings& settings) {
  command.add_option("--preset", settings.preset, "begin with this preset, by name or number")
      ->type_name("NAME")
      ->check([](const std::string& name) { return name.empty() ? "the name is empty" : ""; }, "");
  command.add_option("--load-fxp", settings.presetFile, "begin with this preset file")
      ->type_name("FILE")
      ->excludes("--preset");
  command
      .add_option("--set", settings.sets,
                  "then set a parameter, in its own unit; may be given many times")
      ->type_name("\"NAME=VALUE\"")
      ->allow_extra_args(false);
}

void AddSoundOptions(CLI::App& command, SoundOptions& options, const std::string& depth) {
  command.add_option("OUT", options.output, "the sound file to write")->required();
  command.add_option("--depth", options.depth, "16, 24, 32, float or double; else " + depth)
      ->check(CLI::IsMember({"16", "24", "32", "float", "double"}))
      ->type_name("DEPTH");
  command.add_option("--block", options.block, "announced block, in frames (512)")
      ->check(CLI::Range(16, 16384))
      ->type_name("N");
  command.add_flag("--quiet", options.quiet, "no progress and no closing line");
}

std::unique_ptr<PluginHost> OpenPlugin(const Settings& settings) {
  const std::string& path = settings.plugin;
  return std::make_unique<PluginHost>(path.empty() ? PluginHost::FindDefault() : path);
}

void ApplySettings(PluginHost& host, const Settings& settings) {
  if (!settings.preset.empty()) SelectPreset(host, settings.preset);
  const std::string& file = settings.presetFile;
  if (!file.empty()) UseProgram(host, CheckedProgram(host, file), file);
  for (const std::string& setting : settings.sets) MakeSetting(host, setting);
}
