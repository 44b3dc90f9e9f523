// Finding what was probably meant by a name that does not exist.
#include "tools/io/Nearest.h"

#include <algorithm>
#include <numeric>

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameLetter(char a, char b) { return Lower(a) == Lower(b); }

}  // namespace

int EditDistance(const std::string& a, const std::string& b) {
  std::vector<int> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    int diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const int replaced = diagonal + (SameLetter(a[i], b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row[b.size()];
}

bool EqualWithoutCase(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameLetter);
}

std::string Suggestion(const std::string& name, const std::vector<std::string>& names) {
  std::string nearest;
  int least = 2 + static_cast<int>(name.size()) / 4;
  for (const std::string& candidate : names) {
    const int distance = EditDistance(name, candidate);
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest.empty() ? "" : "; the nearest is \"" + nearest + "\"";
}
