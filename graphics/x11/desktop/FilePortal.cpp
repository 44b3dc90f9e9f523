// The file chooser of the desktop's portal: a call whose answer comes later, as a signal.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "graphics/x11/desktop/DBusConnection.h"
#include "graphics/x11/desktop/FileDialog.h"
#include "graphics/x11/desktop/PercentCode.h"

namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kRequestInterface = "org.freedesktop.portal.Request";

std::string AsText(const std::vector<uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

// One entry of a dictionary of options, up to its value.
void BeginOption(DBusWriter& w, const char* name, const char* type) {
  w.Align(8);
  w.String(name);
  w.Signature(type);
}

void WriteFilters(DBusWriter& w, const std::vector<std::string>& extensions) {
  std::string label;
  for (const std::string& extension : extensions) label += (label.empty() ? "" : " ") + extension;
  BeginOption(w, "filters", "a(sa(us))");
  const size_t filters = w.OpenArray(8);
  w.Align(8);
  w.String(label);
  const size_t patterns = w.OpenArray(8);
  for (const std::string& extension : extensions) {
    w.Align(8);
    w.U32(0);  // a pattern, not a type of file
    w.String("*." + extension);
  }
  w.CloseArray(patterns);
  w.CloseArray(filters);
}

DBusMessage QuestionMessage(const FileQuestion& question, const std::string& token) {
  char owner[32] = "";
  if (question.owner) std::snprintf(owner, sizeof owner, "x11:%x", question.owner);
  DBusWriter w;
  w.String(owner);
  w.String(question.save ? "Save As" : "Open");
  const size_t options = w.OpenArray(8);
  BeginOption(w, "handle_token", "s");
  w.String(token);
  if (!question.extensions.empty()) WriteFilters(w, question.extensions);
  if (!question.folder.empty()) {
    BeginOption(w, "current_folder", "ay");
    const size_t bytes = w.OpenArray(1);
    for (const char c : question.folder) w.Byte(static_cast<uint8_t>(c));
    w.Byte(0);
    w.CloseArray(bytes);
  }
  if (question.save && !question.name.empty()) {
    BeginOption(w, "current_name", "s");
    w.String(question.name);
  }
  w.CloseArray(options);

  DBusMessage message;
  message.destination = kPortal;
  message.path = kPortalPath;
  message.interface = "org.freedesktop.portal.FileChooser";
  message.member = question.save ? "SaveFile" : "OpenFile";
  message.signature = "ssa{sv}";
  message.body = AsText(w.Bytes());
  return message;
}

DBusMessage ListenMessage() {
  DBusWriter w;
  w.String(std::string("type='signal',member='Response',interface='") + kRequestInterface + "'");
  DBusMessage message;
  message.destination = message.interface = "org.freedesktop.DBus";
  message.path = "/org/freedesktop/DBus";
  message.member = "AddMatch";
  message.signature = "s";
  message.body = AsText(w.Bytes());
  return message;
}

// "file:///home/me/a%20b" or with a host's name.
std::string PathOf(const std::string& uri) {
  constexpr std::string_view kScheme = "file://";
  if (!uri.starts_with(kScheme)) return "";
  const size_t slash = uri.find('/', kScheme.size());
  return slash == std::string::npos ? "" : FromPercentCode(std::string_view(uri).substr(slash));
}

// The first file of a positive answer, else "".
std::string ChosenPath(const DBusMessage& response) {
  DBusReader r(response.body);
  if (response.signature != "ua{sv}" || r.U32() != 0) return "";
  const size_t end = r.Array(8);
  while (!r.AtEnd(end)) {
    r.Align(8);
    const std::string name = r.String();
    const std::string type = r.Signature();
    if (name == "uris" && type == "as") {
      const size_t urisEnd = r.Array(4);
      return r.AtEnd(urisEnd) ? "" : PathOf(r.String());
    }
    std::string_view types = type;
    r.Skip(types);
  }
  return "";
}

// Where the portal puts the request, told by our name on the bus; older ones put it elsewhere and
// say so in their answer to the call.
std::string HandleFor(std::string name, const std::string& token) {
  name.erase(0, name.find_first_not_of(':'));
  std::replace(name.begin(), name.end(), '.', '_');
  return std::string(kPortalPath) + "/request/" + name + "/" + token;
}

std::string NextToken() {
  static std::atomic<unsigned> count{0};
  return "tolmara" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

}  // namespace

FileAnswer AskPortal(const FileQuestion& question, const FileWaiter& wait, std::string& path) {
  const auto bus = DBusConnection::Open();
  if (!bus) return FileAnswer::kUnavailable;
  const std::string token = NextToken();
  std::string handle = HandleFor(bus->UniqueName(), token);
  bus->Send(ListenMessage());
  const uint32_t call = bus->Send(QuestionMessage(question, token));
  // Who leaves the bus takes his dialogs along.
  while (wait(bus->Fd())) {
    if (!bus->Receive()) return FileAnswer::kUnavailable;
    while (const auto message = bus->Next()) {
      if (message->replySerial == call) {
        if (message->type == DBusMessage::kError) return FileAnswer::kUnavailable;
        handle = DBusReader(message->body).String();
      } else if (message->type == DBusMessage::kSignal && message->path == handle &&
                 message->interface == kRequestInterface && message->member == "Response") {
        path = ChosenPath(*message);
        return path.empty() ? FileAnswer::kNone : FileAnswer::kChosen;
      }
    }
  }
  return FileAnswer::kNone;
}
