// tolmara show: what a preset or bank file holds.
#include <cstdio>

#include "tools/commands/Commands.h"
#include "tools/commands/Listing.h"
#include "tools/commands/Settings.h"
#include "tools/host/StateFiles.h"
#include "tools/io/Failure.h"
#include "tools/io/Nearest.h"
#include "tools/io/Table.h"

namespace {

struct ShowOptions {
  Settings settings;
  std::string file;
  std::string preset;  // of a bank, to be shown whole
  bool json = false;
};

struct NamedProgram {
  std::string name;
  std::vector<Parameter> parameters;
};

// The effect itself says what the values mean: each program passes through it.
std::vector<NamedProgram> ProgramsOf(PluginHost& host, const std::string& path) {
  std::vector<NamedProgram> programs;
  if (!IsBankFile(path)) {
    const ProgramFile program = CheckedProgram(host, path);
    UseProgram(host, program, path);
    programs.push_back({program.name, LearnParameters(host)});
    return programs;
  }
  const BankFile bank = CheckedBank(host, path);
  for (const ProgramFile& program : bank.programs) {
    UseProgram(host, program, path);
    programs.push_back({program.name, LearnParameters(host)});
  }
  if (!bank.isChunk) return programs;
  UseBankChunk(host, bank, path);
  const std::vector<std::string> names = host.ProgramNames();
  for (int i = 0; i < host.NumPrograms(); ++i) {
    host.SelectProgram(i);
    programs.push_back({names[static_cast<std::size_t>(i)], LearnParameters(host)});
  }
  return programs;
}

std::vector<std::string> NamesOf(const std::vector<NamedProgram>& programs) {
  std::vector<std::string> names;
  for (const NamedProgram& program : programs) names.push_back(program.name);
  return names;
}

// Leaves the one that was asked for.
void KeepOnly(std::vector<NamedProgram>& programs, const std::string& name) {
  for (NamedProgram& program : programs) {
    if (!EqualWithoutCase(program.name, name)) continue;
    programs = {std::move(program)};
    return;
  }
  throw Failure(ExitCode::kSetting,
                "the file has no preset \"" + name + "\"" + Suggestion(name, NamesOf(programs)));
}

void Show(const ShowOptions& options) {
  const std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  std::vector<NamedProgram> programs = ProgramsOf(*host, options.file);
  if (!options.preset.empty()) KeepOnly(programs, options.preset);
  if (options.json) {
    Json list = Json::array();
    for (const NamedProgram& program : programs)
      list.push_back(
          {{"name", program.name}, {"parameters", ParametersAsJson(program.parameters)}});
    return PrintJson({{"effect", host->EffectName()}, {"presets", list}});
  }
  if (programs.size() != 1) return PrintPresetNames(NamesOf(programs));
  std::printf("%s: \"%s\"\n\n", host->EffectName().c_str(), Printable(programs[0].name).c_str());
  PrintParameters(programs[0].parameters);
}

constexpr const char* kExamples =
    "A preset is shown with all its parameters, a bank with the names of its presets; the JSON "
    "form\n"
    "has everything of both.\n"
    "\n"
    "Examples:\n"
    "  tolmara show mine.fxp\n"
    "  tolmara show factory.fxb\n"
    "  tolmara show factory.fxb --preset Hall\n"
    "  tolmara show factory.fxb --json\n";

}  // namespace

void AddShowCommand(CLI::App& app) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* const command = app.add_subcommand("show", "Show what a preset or bank file holds");
  command->add_option("FILE", options->file, "an fxp or fxb file")->required();
  AddPluginOption(*command, options->settings);
  command->add_option("--preset", options->preset, "one preset of a bank")->type_name("NAME");
  command->add_flag("--json", options->json, "for programs");
  command->footer(kExamples);
  command->callback([options] { Show(*options); });
}
