// Dialogs that are programs of their own.
#include "graphics/x11/desktop/FileDialog.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "graphics/x11/desktop/ChildProcess.h"

namespace {

constexpr const char* kOpenTitle = "Open";
constexpr const char* kSaveTitle = "Save As";
constexpr std::size_t kLongestAnswer = 1 << 16;  // bytes; no path is that long

std::string Patterns(const FileQuestion& question) {
  std::string patterns;
  for (const std::string& extension : question.extensions) {
    patterns += (patterns.empty() ? "*." : " *.") + extension;
  }
  return patterns;
}

std::vector<std::string> ZenityCommand(const FileQuestion& question) {
  std::vector<std::string> command = {"zenity", "--file-selection"};
  command.push_back(std::string("--title=") + (question.save ? kSaveTitle : kOpenTitle));
  if (question.save) command.insert(command.end(), {"--save", "--confirm-overwrite"});
  command.push_back("--filename=" + question.folder + (question.save ? question.name : ""));
  const std::string patterns = Patterns(question);
  if (!patterns.empty()) command.push_back("--file-filter=" + patterns);
  return command;
}

std::vector<std::string> KdialogCommand(const FileQuestion& question) {
  std::vector<std::string> command = {"kdialog"};
  if (question.owner) {
    command.insert(command.end(), {"--attach", std::to_string(question.owner)});
  }
  command.push_back(question.save ? "--getsavefilename" : "--getopenfilename");
  command.push_back(question.folder + (question.save ? question.name : ""));
  const std::string patterns = Patterns(question);
  if (!patterns.empty()) command.push_back(patterns);
  return command;
}

// What it writes up to its end; false when the question ended first, or when it writes without one.
bool ReadAll(const ChildProcess& program, const FileWaiter& wait, std::string& text) {
  std::array<char, 4096> buffer;
  while (text.size() < kLongestAnswer && wait(program.Output())) {
    const ssize_t size = read(program.Output(), buffer.data(), buffer.size());
    // It may close its output long before it ends.
    if (size == 0) return program.End() < 0 || wait(program.End());
    if (size < 0 && errno != EINTR) return false;
    if (size > 0) text.append(buffer.data(), static_cast<std::size_t>(size));
  }
  return false;
}

// As AskForFile; null also when the program can't show itself.
std::optional<std::string> AskProgram(const std::vector<std::string>& command,
                                      const FileQuestion& question, const FileWaiter& wait) {
  // The window that the dialog belongs to, by the custom of terminals.
  auto program = ChildProcess::Start(command, {"WINDOWID=" + std::to_string(question.owner)});
  if (!program) return std::nullopt;
  std::string text;
  if (!ReadAll(*program, wait, text)) return "";
  constexpr int kCancelled = 1;
  const int code = program->Wait();
  if (code > kCancelled) return std::nullopt;
  text.erase(std::min(text.find('\n'), text.size()));
  return code == kCancelled || !text.starts_with('/') ? "" : text;
}

}  // namespace

std::optional<std::string> AskForFile(const FileQuestion& question, const FileWaiter& wait) {
  auto path = AskProgram(ZenityCommand(question), question, wait);
  return path ? path : AskProgram(KdialogCommand(question), question, wait);
}
