// Preset and bank files of a loaded effect: what it keeps, and what a file may give it.
#pragma once
#include <string>
#include <vector>

#include "iplug/FxpFormat.h"
#include "tools/host/PluginHost.h"

// Read whole and checked before anything changes. They throw Failure (ExitCode::kInput) with one
// line about what is wrong: damaged, or made for another effect.
ProgramFile CheckedProgram(const PluginHost& host, const std::string& path);
BankFile CheckedBank(const PluginHost& host, const std::string& path);
bool IsBankFile(const std::string& path);  // by its mark

// Gives the effect what a file holds; a bank's regular form goes program by program.
void UseProgram(PluginHost& host, const ProgramFile& program, const std::string& path);
void UseBankChunk(PluginHost& host, const BankFile& bank, const std::string& path);

// The effect's present settings, and all its programs, in the form it keeps its state in.
ProgramFile CurrentProgram(PluginHost& host);
BankFile WholeBank(PluginHost& host);
