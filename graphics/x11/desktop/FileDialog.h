// Asking the user for a file, through whatever the desktop has for that.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct FileQuestion {
  bool save = false;
  std::string folder;                   // where to begin, "" for anywhere
  std::string name;                     // proposed for a file to be saved
  std::vector<std::string> extensions;  // without dots; none for any file
  uint32_t owner = 0;                   // the host's window on the screen, 0 for none
};

// Waits until a descriptor is readable; false ends the question.
using FileWaiter = std::function<bool(int fd)>;

// The path, or "" when none was chosen or no way to ask was found: the desktop's portal, else
// zenity, else kdialog. A question that ends early takes its dialog along.
std::string AskForFile(const FileQuestion& question, const FileWaiter& wait);

// The first of these; for what each found out.
enum class FileAnswer { kUnavailable, kNone, kChosen };
FileAnswer AskPortal(const FileQuestion& question, const FileWaiter& wait, std::string& path);
