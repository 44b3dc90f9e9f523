// What lists have in common: parameters as rows of a table and as JSON.
#include "tools/commands/Listing.h"

#include <cstdio>

#include "tools/io/Table.h"

namespace {

Json AsJson(const Parameter& parameter) {
  Json json = {{"id", parameter.id},       {"name", parameter.name},
               {"value", parameter.value}, {"text", parameter.display},
               {"label", parameter.label}, {"stepped", parameter.stepped}};
  if (parameter.min && parameter.max) {
    json["min"] = *parameter.min;
    json["max"] = *parameter.max;
  }
  if (!parameter.choices.empty()) json["choices"] = parameter.choices;
  return json;
}

}  // namespace

Json ParametersAsJson(const std::vector<Parameter>& parameters) {
  Json list = Json::array();
  for (const Parameter& parameter : parameters) list.push_back(AsJson(parameter));
  return list;
}

void PrintParameters(const std::vector<Parameter>& parameters) {
  std::vector<std::vector<std::string>> rows;
  for (const Parameter& parameter : parameters)
    rows.push_back({std::to_string(parameter.id), parameter.name, parameter.display,
                    parameter.Range(), parameter.label});
  PrintTable({"Id", "Name", "Value", "Range", "Unit"}, rows);
}

void PrintPresetNames(const std::vector<std::string>& names) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& name : names) rows.push_back({std::to_string(rows.size()), name});
  PrintTable({"No.", "Preset"}, rows);
}

void PrintJson(const Json& json) {
  std::printf("%s\n", json.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}
