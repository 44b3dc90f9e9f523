// Questions to the user beyond the controls, and pages opened elsewhere.
#include <poll.h>

#include <cstdlib>
#include <sstream>

#include "graphics/x11/IGraphicsX11.h"
#include "graphics/x11/LockPause.h"
#include "graphics/x11/desktop/ChildProcess.h"
#include "graphics/x11/desktop/FileDialog.h"

namespace {

enum EBoxResult { kNotShown = 0, kOK = 1, kCancel = 2, kYes = 6, kNo = 7 };

struct BoxButton {
  const char* text;
  EBoxResult result;
};
struct BoxType {
  int type;
  BoxButton buttons[3];  // in order; a null text ends them
  EBoxResult dismissed;
};
constexpr BoxType kBoxTypes[] = {
    {0, {{"OK", kOK}}, kOK},
    {1, {{"OK", kOK}, {"Cancel", kCancel}}, kCancel},
    {3, {{"Yes", kYes}, {"No", kNo}, {"Cancel", kCancel}}, kCancel},
    {4, {{"Yes", kYes}, {"No", kNo}}, kNo},
};

const BoxType& BoxTypeOf(int type) {
  for (const BoxType& row : kBoxTypes) {
    if (row.type == type) return row;
  }
  return kBoxTypes[0];
}

void AddLines(IPopupMenu& menu, const char* text) {
  std::istringstream lines(text ? text : "");
  for (std::string line; std::getline(lines, line);) {
    menu.AddItem(line.c_str(), -1, IPopupMenuItem::kDisabled);
  }
}

std::vector<std::string> Words(const char* text) {
  std::istringstream stream(text ? text : "");
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// As the dialogs want it: whole, with a slash at the end.
std::string FolderPath(const char* folder) {
  std::string path = folder;
  if (!path.ends_with('/')) path += '/';
  const char* home = std::getenv("HOME");
  return path.starts_with("~/") && home ? home + path.substr(1) : path;
}

bool HasExtension(const std::string& path, const std::vector<std::string>& extensions) {
  const std::string name = path.substr(path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  for (const std::string& extension : extensions) {
    if (strcasecmp(name.c_str() + dot + 1, extension.c_str()) == 0) return true;
  }
  return false;
}

bool WaitWithoutEditor(int fd) {
  pollfd watched{fd, POLLIN, 0};
  int ready;
  do {
    ready = poll(&watched, 1, -1);
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

}  // namespace

// Shown as a menu in the middle of the editor: lines that cannot be chosen, and the buttons.
int IGraphicsX11::ShowMessageBox(const char* text, const char* caption, int type) {
  X11Editor* editor = EditorHere();
  if (!editor) return kNotShown;
  const BoxType& box = BoxTypeOf(type);
  IPopupMenu menu;
  AddLines(menu, caption);
  AddLines(menu, text);
  menu.AddSeparator();
  const int firstButton = menu.GetNItems();
  for (const BoxButton& button : box.buttons) {
    if (button.text) menu.AddItem(button.text);
  }
  const LockPause pause(GetPlug());
  const IPopupMenu* chosen = editor->RunMenu(menu, editor->MiddleFor(menu));
  return chosen ? box.buttons[chosen->GetChosenItemIdx() - firstButton].result : box.dismissed;
}

void IGraphicsX11::PromptForFile(HeapString* file, int action, HeapString* dir,
                                 const char* extensions) {
  if (!file) return;
  FileQuestion question;
  question.save = action == kFileSave;
  question.name = file->Get();
  file->Set("");
  if (!WindowIsOpen()) return;
  if (dir && dir->IsEmpty()) dir->Set("~/Desktop");
  question.folder = FolderPath(dir ? dir->Get() : "~/Desktop");
  question.extensions = Words(extensions);

  const LockPause pause(GetPlug());
  X11Editor* editor = EditorHere();
  if (editor) question.owner = editor->TopLevel();
  const FileWaiter wait =
      editor ? FileWaiter([editor](int fd) { return editor->WaitFor(fd); }) : WaitWithoutEditor;
  auto path = AskForFile(question, wait);
  if (!path) ShowMessageBox("Please install zenity or kdialog.", "No file dialog found", 0);
  if (!path || path->empty()) return;
  if (question.save && !question.extensions.empty() && !HasExtension(*path, question.extensions)) {
    *path += "." + question.extensions[0];
  }
  file->Set(path->c_str());
  if (dir) dir->Set(path->substr(0, path->rfind('/') + 1).c_str());
}

bool IGraphicsX11::OpenURL(const char* url, const char* errMsg) {
  // kept: what can be no address counts as opened. A leading dash would be an option.
  if (!url || !*url || *url == '-') return true;
  const LockPause pause(GetPlug());
  const bool opened = RunInBackground({"xdg-open", url});
  if (EditorHere()) mFailure = !opened && errMsg ? errMsg : "";
  return opened;
}

void IGraphicsX11::ShowFailure() {
  if (mFailure.empty()) return;
  const std::string message = std::exchange(mFailure, "");
  ShowMessageBox(message.c_str(), "", 0);
}
