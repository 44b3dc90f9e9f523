#include "checks/sweep/Case.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace {

const ParamSpec& SpecOf(int id) { return kParamTable.at(static_cast<size_t>(id)); }

double StepOf(int id) { return SpecOf(id).kind == ParamKind::Double ? SpecOf(id).step : 1.0; }

}  // namespace

int PositionsOf(int id) {
  return static_cast<int>(std::lround((SpecOf(id).max - SpecOf(id).min) / StepOf(id))) + 1;
}

double ValueAt(int id, int position) {
  return std::min(SpecOf(id).min + position * StepOf(id), SpecOf(id).max);
}

std::string LineOf(const Case& settings) {
  std::ostringstream line;
  line.precision(17);
  line << settings.rate << ' ' << settings.block;
  for (int id = 0; id < kNumParams; ++id) {
    const double value = settings.values[static_cast<size_t>(id)];
    if (value != SpecOf(id).defaultValue) line << ' ' << id << '=' << value;
  }
  return line.str();
}

Case CaseOf(const std::string& line) {
  Case settings{};
  for (int id = 0; id < kNumParams; ++id) {
    settings.values[static_cast<size_t>(id)] = SpecOf(id).defaultValue;
  }
  std::istringstream words(line);
  words >> settings.rate >> settings.block;
  int id = 0;
  double value = 0;
  char equals = 0;
  while (words >> id >> equals >> value && equals == '=' && id >= 0 && id < kNumParams) {
    settings.values[static_cast<size_t>(id)] = value;
  }
  const bool whole = words.eof() && words.fail() && settings.rate > 0 && settings.block > 0;
  if (!whole) throw std::invalid_argument("not a case: \"" + line + "\"");
  return settings;
}
