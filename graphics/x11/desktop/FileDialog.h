// Asking the user for a file through zenity or kdialog.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct FileQuestion {
  bool save = false;
  std::string folder;                   // where to begin, ends in a slash
  std::string name;                     // proposed for a file to be saved
  std::vector<std::string> extensions;  // without dots; none for any file
  uint32_t owner = 0;                   // the host's window on the screen, 0 for none
};

// Waits until a descriptor is readable; false ends the question.
using FileWaiter = std::function<bool(int fd)>;

// The path, "" when none was chosen, null when there is neither zenity nor kdialog to ask with. A
// question that ends early closes its dialog.
std::optional<std::string> AskForFile(const FileQuestion& question, const FileWaiter& wait);
