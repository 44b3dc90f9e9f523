// Questions to the user beyond the controls, and pages opened elsewhere.
#include <poll.h>

#include <sstream>

#include "graphics/windows/FilePrompt.h"
#include "graphics/windows/LockPause.h"
#include "graphics/windows/MessageBoxes.h"
#include "graphics/x11/IGraphicsX11.h"
#include "graphics/x11/desktop/ChildProcess.h"
#include "graphics/x11/desktop/FileDialog.h"

namespace {

void AddLines(IPopupMenu& menu, const char* text) {
  std::istringstream lines(text ? text : "");
  for (std::string line; std::getline(lines, line);) {
    menu.AddItem(line.c_str(), -1, IPopupMenuItem::kDisabled);
  }
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
  if (!editor) return kBoxNotShown;
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
  question.folder = StartFolder(dir);
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
  SetChosenFile(*path, file, dir);
}

bool IGraphicsX11::OpenURL(const char* url, const char* errMsg) {
  // kept: a text that cannot be an address counts as opened, so that a link without one shows no
  // error. A leading dash would be an option of the program.
  if (!url || !*url || *url == '-') return true;
  const LockPause pause(GetPlug());
  const bool opened = RunInBackground({"xdg-open", url});
  if (EditorHere()) mFailure.Note(opened, errMsg);
  return opened;
}
