// tolmara params, tolmara presets: what an effect offers, as tables or JSON.
#include "tools/commands/Commands.h"
#include "tools/commands/Listing.h"
#include "tools/commands/Settings.h"

namespace {

struct ListOptions {
  Settings settings;
  bool json = false;
};

void ListParams(const ListOptions& options) {
  const std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  ApplySettings(*host, options.settings);
  const std::vector<Parameter> parameters = LearnParameters(*host);
  if (options.json)
    PrintJson(ParametersAsJson(parameters));
  else
    PrintParameters(parameters);
}

void ListPresets(const ListOptions& options) {
  const std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  const std::vector<std::string> names = host->ProgramNames();
  if (!options.json) return PrintPresetNames(names);
  Json list = Json::array();
  for (const std::string& name : names) list.push_back({{"index", list.size()}, {"name", name}});
  PrintJson(list);
}

constexpr const char* kParamsExamples =
    "\"value\" in the JSON form is the position from 0 to 1 that automation uses.\n"
    "\n"
    "Examples:\n"
    "  tolmara params\n"
    "  tolmara params --preset Cathedral --json\n"
    "  tolmara params --load-fxp mine.fxp\n";

constexpr const char* kPresetsExamples =
    "Examples:\n"
    "  tolmara presets\n"
    "  tolmara presets --json --plugin other.so\n";

}  // namespace

void AddParamsCommand(CLI::App& app) {
  auto options = std::make_shared<ListOptions>();
  CLI::App* const command = app.add_subcommand("params", "List the parameters and their values");
  AddSettingsOptions(*command, options->settings);
  command->add_flag("--json", options->json, "for programs");
  command->footer(kParamsExamples);
  command->callback([options] { ListParams(*options); });
}

void AddPresetsCommand(CLI::App& app) {
  auto options = std::make_shared<ListOptions>();
  CLI::App* const command = app.add_subcommand("presets", "List the presets");
  AddPluginOption(*command, options->settings);
  command->add_flag("--json", options->json, "for programs");
  command->footer(kPresetsExamples);
  command->callback([options] { ListPresets(*options); });
}
