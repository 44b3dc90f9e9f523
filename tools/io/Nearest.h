// Finding what was probably meant by a name that does not exist.
#pragma once
#include <string>
#include <vector>

// Number of single-letter insertions, removals and replacements between two texts, without regard
// to case (Levenshtein's distance).
int EditDistance(const std::string& a, const std::string& b);

bool EqualWithoutCase(const std::string& a, const std::string& b);

// The entry of `names` nearest to `name`, the first of equals; "" for an empty list.
std::string NearestName(const std::string& name, const std::vector<std::string>& names);
