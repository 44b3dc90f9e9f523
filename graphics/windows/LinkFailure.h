// The message of a link that could not be opened.
#pragma once

#include <string>
#include <utility>

#include "graphics/IGraphics.h"

// A control tries its second address when the first has failed, so the message waits until the
// press is over and goes when a later address opens.
class LinkFailure {
 public:
  // `message` may be null: nothing to show.
  void Note(bool opened, const char* message) { mMessage = !opened && message ? message : ""; }
  void Show(IGraphics& graphics) {
    if (mMessage.empty()) return;
    const std::string message = std::exchange(mMessage, "");
    graphics.ShowMessageBox(message.c_str(), "", 0);
  }

 private:
  std::string mMessage;
};
