// Finding the bus, the handshake, and messages in and out.
#include "graphics/x11/desktop/DBusConnection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "graphics/x11/desktop/PercentCode.h"

namespace {

constexpr int kAnswerTimeout_ms = 3000;  // of the bus itself

// The socket that one address of the list names: "unix:path=..." or "unix:abstract=...".
FileDescriptor ConnectTo(std::string_view address) {
  constexpr std::string_view kTransport = "unix:";
  if (!address.starts_with(kTransport)) return FileDescriptor();
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  size_t length = 0;
  address.remove_prefix(kTransport.size());
  while (!address.empty() && length == 0) {
    const std::string_view pair = address.substr(0, address.find(','));
    address.remove_prefix(std::min(pair.size() + 1, address.size()));
    const bool isAbstract = pair.starts_with("abstract=");
    if (!isAbstract && !pair.starts_with("path=")) continue;
    const std::string path =
        std::string(isAbstract ? 1 : 0, '\0') + FromPercentCode(pair.substr(pair.find('=') + 1));
    if (path.size() >= sizeof name.sun_path) return FileDescriptor();
    std::memcpy(name.sun_path, path.data(), path.size());
    length = offsetof(sockaddr_un, sun_path) + path.size() + (isAbstract ? 0 : 1);
  }
  if (length == 0) return FileDescriptor();
  FileDescriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto* generic = reinterpret_cast<const sockaddr*>(&name);
  if (!fd.IsOpen() || connect(fd.Get(), generic, static_cast<socklen_t>(length)) != 0) {
    return FileDescriptor();
  }
  return fd;
}

FileDescriptor ConnectToSession() {
  std::string addresses;
  if (const char* set = std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
    addresses = set;
  } else if (const char* folder = std::getenv("XDG_RUNTIME_DIR")) {
    addresses = std::string("unix:path=") + folder + "/bus";
  }
  for (std::string_view rest = addresses; !rest.empty();) {
    const std::string_view address = rest.substr(0, rest.find(';'));
    FileDescriptor fd = ConnectTo(address);
    if (fd.IsOpen()) return fd;
    rest.remove_prefix(std::min(address.size() + 1, rest.size()));
  }
  return FileDescriptor();
}

}  // namespace

std::unique_ptr<DBusConnection> DBusConnection::Open() {
  FileDescriptor fd = ConnectToSession();
  if (!fd.IsOpen()) return nullptr;
  std::unique_ptr<DBusConnection> bus(new DBusConnection(std::move(fd)));
  return bus->Authenticate() && bus->SayHello() ? std::move(bus) : nullptr;
}

// The kernel vouches for the user, whose number is sent as text in hexadecimal digits.
bool DBusConnection::Authenticate() {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string line("\0AUTH EXTERNAL ", 15);
  for (const char c : std::to_string(getuid())) {
    line += {kDigits[c >> 4 & 15], kDigits[c & 15]};
  }
  line += "\r\n";
  if (!SendAll(line.data(), line.size()) || !ReceiveLine().starts_with("OK")) return false;
  constexpr std::string_view kBegin = "BEGIN\r\n";
  return SendAll(kBegin.data(), kBegin.size());
}

bool DBusConnection::SayHello() {
  DBusMessage hello;
  hello.destination = hello.interface = "org.freedesktop.DBus";
  hello.path = "/org/freedesktop/DBus";
  hello.member = "Hello";
  const uint32_t serial = Send(std::move(hello));
  while (serial && WaitForInput() && Receive()) {
    while (const auto message = Next()) {
      if (message->replySerial != serial) continue;
      mName = DBusReader(message->body).String();
      return message->type == DBusMessage::kReturn && !mName.empty();
    }
  }
  return false;
}

bool DBusConnection::WaitForInput() {
  pollfd fd{Fd(), POLLIN, 0};
  return poll(&fd, 1, kAnswerTimeout_ms) > 0;
}

bool DBusConnection::SendAll(const char* data, size_t size) {
  while (size > 0) {
    // No signal when the other end has gone: that belongs to the host.
    const ssize_t sent = send(Fd(), data, size, MSG_NOSIGNAL);
    if (sent <= 0) return false;
    data += sent;
    size -= static_cast<size_t>(sent);
  }
  return true;
}

std::string DBusConnection::ReceiveLine() {
  size_t end;
  while ((end = mReceived.find("\r\n")) == std::string::npos) {
    if (!WaitForInput() || !Receive()) return "";
  }
  std::string line = mReceived.substr(0, end);
  mReceived.erase(0, end + 2);
  return line;
}

uint32_t DBusConnection::Send(DBusMessage message) {
  message.serial = ++mLastSerial;
  const std::vector<uint8_t> bytes = message.Bytes();
  const bool sent = SendAll(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return sent ? message.serial : 0;
}

bool DBusConnection::Receive() {
  char buffer[4096];
  ssize_t size;
  while ((size = recv(Fd(), buffer, sizeof buffer, MSG_DONTWAIT)) > 0) {
    mReceived.append(buffer, static_cast<size_t>(size));
  }
  const bool isOpen = size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
  return isOpen && !mBroken;
}

std::optional<DBusMessage> DBusConnection::Next() {
  return DBusMessage::TakeFrom(mReceived, mBroken);
}
