// A table of text on stdout.
#pragma once
#include <string>
#include <vector>

// The text with a "?" for each control character: names come from files and effects of anybody.
std::string Printable(std::string text);

// Prints rows under a heading in columns of equal width, two blanks apart.
void PrintTable(const std::vector<std::string>& heading,
                const std::vector<std::vector<std::string>>& rows);
