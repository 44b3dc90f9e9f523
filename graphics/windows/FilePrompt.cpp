// Texts to and from file dialogs.
#include "graphics/windows/FilePrompt.h"

#include <cstdlib>
#include <sstream>

#include "iplug/Containers.h"

std::vector<std::string> Words(const char* text) {
  std::istringstream stream(text ? text : "");
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string StartFolder(HeapString* dir) {
  if (dir && dir->IsEmpty()) dir->Set("~/Desktop");
  std::string path = dir ? dir->Get() : "~/Desktop";
  if (!path.ends_with('/')) path += '/';
  const char* home = std::getenv("HOME");
  return path.starts_with("~/") && home ? home + path.substr(1) : path;
}

void SetChosenFile(const std::string& path, HeapString* file, HeapString* dir) {
  file->Set(path.c_str());
  if (dir) dir->Set(path.substr(0, path.rfind('/') + 1).c_str());
}
