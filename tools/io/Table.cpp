// A table of text on stdout.
#include "tools/io/Table.h"

#include <algorithm>
#include <cstdio>

std::string Printable(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = '?';
  return text;
}

namespace {

void PrintRow(const std::vector<std::string>& row, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t c = 0; c < row.size(); ++c) {
    line += Printable(row[c]);
    line.append(widths[c] - row[c].size() + 2, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  std::printf("%s\n", line.c_str());
}

}  // namespace

void PrintTable(const std::vector<std::string>& heading,
                const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths(heading.size(), 0);
  std::vector<std::string> rule;
  for (std::size_t c = 0; c < heading.size(); ++c) {
    widths[c] = heading[c].size();
    for (const auto& row : rows) widths[c] = std::max(widths[c], row[c].size());
    rule.emplace_back(widths[c], '-');
  }
  PrintRow(heading, widths);
  PrintRow(rule, widths);
  for (const auto& row : rows) PrintRow(row, widths);
}
