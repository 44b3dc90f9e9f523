// What lists have in common: parameters as rows of a table and as JSON.
#pragma once
#include <nlohmann/json.hpp>
#include <vector>

#include "tools/host/Parameters.h"

// Ordered, so that fields come out in the order in which they were put in.
using Json = nlohmann::ordered_json;

Json ParametersAsJson(const std::vector<Parameter>& parameters);
void PrintParameters(const std::vector<Parameter>& parameters);

// Presets by number and name.
void PrintPresetNames(const std::vector<std::string>& names);

// Bytes of a name that are no UTF-8 come out replaced.
void PrintJson(const Json& json);
