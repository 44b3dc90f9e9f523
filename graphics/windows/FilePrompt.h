// What the platforms' file dialogs have in common.
#pragma once

#include <string>
#include <vector>

class HeapString;

// The parts of a text between its blanks; none for null.
std::vector<std::string> Words(const char* text);

// Where a dialog starts: `dir`, or the desktop, which an empty `dir` then names. Without a leading
// "~", with a slash at the end. `dir` may be null.
std::string StartFolder(HeapString* dir);

// Notes the chosen path and its folder, with a slash at the end. `dir` may be null.
void SetChosenFile(const std::string& path, HeapString* file, HeapString* dir);
