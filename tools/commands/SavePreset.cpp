// tolmara save-preset, tolmara save-bank: an effect's settings as fxp and fxb files.
#include "tools/commands/Commands.h"
#include "tools/commands/Settings.h"
#include "tools/host/StateFiles.h"
#include "tools/io/AtomicFile.h"

namespace {

struct SaveOptions {
  Settings settings;
  std::string output;
  std::string name;  // of the preset, "" for the program's own
};

std::unique_ptr<PluginHost> OpenWithSettings(const SaveOptions& options) {
  std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  ApplySettings(*host, options.settings);
  if (!options.settings.presetFile.empty())
    RequireOtherFile(options.settings.presetFile, options.output);
  return host;
}

void SavePreset(const SaveOptions& options) {
  const std::unique_ptr<PluginHost> host = OpenWithSettings(options);
  ProgramFile program = CurrentProgram(*host);
  if (!options.name.empty()) program.name = options.name;
  const std::vector<std::uint8_t> bytes = EncodeProgramFile(program);
  WriteWholeFile(options.output, bytes.data(), bytes.size());
}

void SaveBank(const SaveOptions& options) {
  const std::unique_ptr<PluginHost> host = OpenWithSettings(options);
  const std::vector<std::uint8_t> bytes = EncodeBankFile(WholeBank(*host));
  WriteWholeFile(options.output, bytes.data(), bytes.size());
}

constexpr const char* kPresetExamples =
    "Any host for VST2 plug-ins can load the file. A name is cut to 27 characters.\n"
    "\n"
    "Examples:\n"
    "  tolmara save-preset church.fxp --preset Church\n"
    "  tolmara save-preset mine.fxp --preset Hall --set Mix=0.25 --name \"Quiet hall\"\n";

constexpr const char* kBankExamples =
    "All presets go into the file. The settings asked for stand in the preset that they begin "
    "with.\n"
    "\n"
    "Examples:\n"
    "  tolmara save-bank factory.fxb\n"
    "  tolmara save-bank mine.fxb --preset Hall --set Mix=0.25\n";

}  // namespace

void AddSavePresetCommand(CLI::App& app) {
  auto options = std::make_shared<SaveOptions>();
  CLI::App* const command = app.add_subcommand("save-preset", "Write the settings as an fxp file");
  command->add_option("OUT.fxp", options->output, "the preset file to write")->required();
  AddSettingsOptions(*command, options->settings);
  command->add_option("--name", options->name, "the preset's name in the file")->type_name("NAME");
  command->footer(kPresetExamples);
  command->callback([options] { SavePreset(*options); });
}

void AddSaveBankCommand(CLI::App& app) {
  auto options = std::make_shared<SaveOptions>();
  CLI::App* const command = app.add_subcommand("save-bank", "Write all presets as an fxb file");
  command->add_option("OUT.fxb", options->output, "the bank file to write")->required();
  AddSettingsOptions(*command, options->settings);
  command->footer(kBankExamples);
  command->callback([options] { SaveBank(*options); });
}
