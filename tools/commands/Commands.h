// The commands of `tolmara`. Each function adds one to the command line: its options, its help with
// examples, and what it does when it is chosen.
#pragma once
#include <CLI/CLI.hpp>

void AddRenderCommand(CLI::App& app);
void AddResponseCommand(CLI::App& app);
void AddParamsCommand(CLI::App& app);
void AddPresetsCommand(CLI::App& app);
void AddSavePresetCommand(CLI::App& app);
void AddSaveBankCommand(CLI::App& app);
void AddShowCommand(CLI::App& app);
void AddScreenshotCommand(CLI::App& app);
void AddEditorCommand(CLI::App& app);
