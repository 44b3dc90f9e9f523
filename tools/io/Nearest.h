// Finding what was probably meant by a name that does not exist.
#pragma once
#include <string>
#include <vector>

// Number of single-letter insertions, removals and replacements between two texts, without regard
// to case (Levenshtein's distance).
int EditDistance(const std::string& a, const std::string& b);

bool EqualWithoutCase(const std::string& a, const std::string& b);

// "; the nearest is ..." with the entry of `names` nearest to `name`, the first of equals; "" where
// none is near enough to have been meant.
std::string Suggestion(const std::string& name, const std::vector<std::string>& names);
