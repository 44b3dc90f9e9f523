// What an effect says about its parameters, and setting them by name and real value.
#include "tools/host/Parameters.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "tools/io/Failure.h"
#include "tools/io/Nearest.h"

namespace {

constexpr int kChoiceProbes = 1024;  // positions tried to find all choices

std::optional<double> Number(const std::string& text) {
  double number = 0;
  const char* const first = text.c_str() + (text.starts_with('+') ? 1 : 0);
  const char* const last = text.c_str() + text.size();
  const auto [end, error] = std::from_chars(first, last, number);
  if (error != std::errc() || end != last || !std::isfinite(number)) return std::nullopt;
  return number;
}

[[noreturn]] void Fail(const std::string& line) { throw Failure(ExitCode::kSetting, line); }

bool IsWhole(double x) { return std::floor(x) == x; }

std::vector<std::string> LearnChoices(PluginHost& host, int id) {
  std::vector<std::string> choices;
  for (int i = 0; i <= kChoiceProbes; ++i) {
    const std::string text = DisplayOf(host, id, static_cast<float>(i) / kChoiceProbes);
    if (choices.empty() || text != choices.back()) choices.push_back(text);
  }
  return choices;
}

// A choice is named by its text or by its number, the first being 0.
const std::string& Choice(const Parameter& parameter, const std::string& value) {
  for (const std::string& choice : parameter.choices)
    if (EqualWithoutCase(choice, value)) return choice;
  const std::optional<double> number = Number(value);
  const auto count = static_cast<double>(parameter.choices.size());
  if (!number || !IsWhole(*number) || *number < 0 || *number >= count)
    Fail(parameter.name + " is one of " + parameter.Range() + ", not \"" + value + "\"");
  return parameter.choices[static_cast<std::size_t>(*number)];
}

void RequireInRange(const Parameter& parameter, double number, const std::string& value) {
  const std::string unit = parameter.label.empty() ? "" : " " + parameter.label;
  if (number < *parameter.min || number > *parameter.max)
    Fail(parameter.name + " goes from " + parameter.Range() + unit + "; " + value + " is outside");
  if (parameter.stepped && IsWhole(*parameter.min) && !IsWhole(number))
    Fail(parameter.name + " takes whole numbers from " + parameter.Range() + unit + ", not " +
         value);
}

std::vector<std::string> ParameterNames(PluginHost& host) {
  std::vector<std::string> names;
  for (int id = 0; id < host.NumParams(); ++id) names.push_back(host.Text(effGetParamName, id));
  return names;
}

}  // namespace

std::string Parameter::Range() const {
  if (minText.empty() || maxText.empty()) return "0 to 1, a position";
  if (choices.empty()) return minText + " to " + maxText;
  std::string list;
  for (const std::string& choice : choices) list += (list.empty() ? "" : ", ") + choice;
  return list;
}

std::string DisplayOf(PluginHost& host, int id, float normalised) {
  VstIntPtr answer = 0;
  const std::string text =
      host.Text(effVendorSpecific, kVendorTextOfValue, id, normalised, &answer);
  return answer == kVendorAnswer ? text : "";
}

Parameter LearnParameter(PluginHost& host, int id) {
  Parameter parameter{.id = id,
                      .name = host.Text(effGetParamName, id),
                      .label = host.Text(effGetParamLabel, id),
                      .value = host.Get(id),
                      .display = host.Text(effGetParamDisplay, id),
                      .minText = DisplayOf(host, id, 0),
                      .maxText = DisplayOf(host, id, 1)};
  parameter.stepped = host.Dispatch(effVendorSpecific, kVendorIsStepped, id) == kVendorAnswer;
  parameter.min = Number(parameter.minText);
  parameter.max = Number(parameter.maxText);
  const bool told = !parameter.minText.empty() && !parameter.maxText.empty();
  if (told && !(parameter.min && parameter.max)) parameter.choices = LearnChoices(host, id);
  return parameter;
}

std::vector<Parameter> LearnParameters(PluginHost& host) {
  std::vector<Parameter> parameters;
  for (int id = 0; id < host.NumParams(); ++id) parameters.push_back(LearnParameter(host, id));
  return parameters;
}

int FindParameter(PluginHost& host, const std::string& nameOrId) {
  const std::vector<std::string> names = ParameterNames(host);
  const auto matches = [&](const std::string& name) { return EqualWithoutCase(name, nameOrId); };
  const auto found = std::find_if(names.begin(), names.end(), matches);
  if (found != names.end()) {
    if (std::any_of(found + 1, names.end(), matches))
      Fail("several parameters are called " + *found + "; use the id");
    return static_cast<int>(found - names.begin());
  }
  int id = -1;
  const char* const last = nameOrId.data() + nameOrId.size();
  const auto [end, error] = std::from_chars(nameOrId.data(), last, id);
  if (error == std::errc() && end == last) {
    if (id >= 0 && id < host.NumParams()) return id;
    Fail("parameter ids go from 0 to " + std::to_string(host.NumParams() - 1) + "; " + nameOrId +
         " is outside");
  }
  Fail("no parameter is called \"" + nameOrId + "\"" + Suggestion(nameOrId, names));
}

void SetParameter(PluginHost& host, int id, const std::string& value) {
  const Parameter parameter = LearnParameter(host, id);
  std::string text = value;
  if (!parameter.choices.empty()) {
    text = Choice(parameter, value);
  } else {
    const std::optional<double> number = Number(value);
    if (!number) Fail(parameter.name + " takes a number, not \"" + value + "\"");
    if (!parameter.min || !parameter.max) {
      if (*number < 0 || *number > 1)
        Fail(parameter.name + " goes from " + parameter.Range() + "; " + value + " is outside");
      host.Set(id, static_cast<float>(*number));
      return;
    }
    RequireInRange(parameter, *number, value);
  }
  if (host.Dispatch(effString2Parameter, id, 0, text.data()) == 0)
    Fail("the plug-in does not accept \"" + value + "\" for " + parameter.name);
}
