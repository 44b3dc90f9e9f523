// What an effect says about its parameters, and setting them by name and real value.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "tools/host/PluginHost.h"

// One parameter as learnt through the interface. A parameter is either numeric, with a range, or
// made of choices; one whose effect gives neither is set by its position from 0 to 1.
struct Parameter {
  int id;
  std::string name;
  std::string label;    // unit of the value, "" if none
  float value;          // normalised, at the time of asking
  std::string display;  // the same as text
  bool stepped = false;
  std::string minText, maxText;        // the texts of 0 and 1, "" if the effect does not give them
  std::optional<double> min{}, max{};  // the same as numbers, if they are
  std::vector<std::string> choices{};  // every text in order, of a parameter without numbers

  std::string Range() const;  // for people: "0 to 100", "off, on"
};

Parameter LearnParameter(PluginHost& host, int id);
std::vector<Parameter> LearnParameters(PluginHost& host);

// The text of a normalised value, "" if the effect does not give it.
std::string DisplayOf(PluginHost& host, int id, float normalised);

// The parameter that a name or an id means. Throws Failure (ExitCode::kSetting), with the nearest
// name for one that does not exist.
int FindParameter(PluginHost& host, const std::string& nameOrId);

// Stores a value given as a person writes it: a number in the parameter's own unit, or one of its
// choices by text or number. Throws Failure (ExitCode::kSetting), with the range.
void SetParameter(PluginHost& host, int id, const std::string& value);
