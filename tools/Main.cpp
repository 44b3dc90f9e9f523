// tolmara: a host for VST2 effects on the command line.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>

#include "tools/commands/Commands.h"
#include "tools/io/AtomicFile.h"
#include "tools/io/Failure.h"
#include "tools/io/Nearest.h"

namespace {

constexpr void (*kCommands[])(CLI::App&) = {
    AddRenderCommand,  AddResponseCommand,   AddParamsCommand,
    AddPresetsCommand, AddSavePresetCommand, AddSaveBankCommand,
    AddShowCommand,    AddScreenshotCommand, AddEditorCommand,
};

constexpr const char* kAbout =
    "Reverberates sound files with Tolmara, or with any other VST2 effect.\n"
    "`tolmara COMMAND --help` explains a command and gives examples.";

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    an internal error\n"
    "  2    the command line cannot be understood\n"
    "  3    a file to read is missing, damaged, empty or of the wrong kind\n"
    "  4    an unknown parameter or preset, or a value out of range\n"
    "  5    no plug-in, or one that cannot do what is needed\n"
    "  6    a file cannot be written\n"
    "  128+ ended by that signal, with nothing left half-written\n";

int Fail(const char* line, ExitCode code) {
  std::fprintf(stderr, "tolmara: %s\n", line);
  return static_cast<int>(code);
}

// The library would only say that a command is missing.
void RequireKnownCommand(const CLI::App& app, const std::string& name) {
  if (name == "-h" || name == "--help" || name == "-V" || name == "--version") return;
  if (name.starts_with('-'))
    throw Failure(ExitCode::kUsage, "a command comes first, not \"" + name + "\"");
  std::vector<std::string> names;
  for (const CLI::App* const command : app.get_subcommands({}))
    names.push_back(command->get_name());
  if (std::find(names.begin(), names.end(), name) != names.end()) return;
  throw Failure(ExitCode::kUsage,
                "no command is called \"" + name + "\"" + Suggestion(name, names));
}

// "help" and "help render" mean "--help" and "render --help".
void HelpInsteadOf(std::vector<std::string>& words) {
  words.erase(words.begin());
  words.resize(std::min<std::size_t>(words.size(), 1));
  words.emplace_back("--help");
}

// What was printed is an output like any other file.
void RequirePrinted() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0 || !std::cout.flush())
    throw Failure(ExitCode::kOutput,
                  std::string("cannot write the standard output: ") + std::strerror(errno));
}

int Run(int argc, char** argv) {
  CLI::App app{kAbout, "tolmara"};
  app.require_subcommand(1);
  app.footer(kExitCodes);
  app.set_version_flag("-V,--version", "tolmara " TOLMARA_VERSION, "print the version and exit");
  for (const auto add : kCommands) add(app);
  std::vector<std::string> words(argv + 1, argv + argc);
  if (!words.empty() && words[0] == "help") HelpInsteadOf(words);
  if (!words.empty()) RequireKnownCommand(app, words[0]);
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::ParseError& error) {
    // A request for help is one of these too, with a code of 0.
    if (error.get_exit_code() != 0) return Fail(error.what(), ExitCode::kUsage);
    app.exit(error);
  }
  RequirePrinted();
  return static_cast<int>(ExitCode::kSuccess);
}

}  // namespace

int main(int argc, char** argv) {
  RemoveUnfinishedFileOnSignals();
  try {
    return Run(argc, argv);
  } catch (const Failure& failure) {
    return Fail(failure.what(), failure.Code());
  } catch (const std::exception& error) {
    return Fail(error.what(), ExitCode::kInternal);
  }
}
