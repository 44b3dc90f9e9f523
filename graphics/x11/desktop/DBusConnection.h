// A connection to the bus of the user's desktop session.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "graphics/x11/desktop/DBusMessage.h"
#include "graphics/x11/server/FileDescriptor.h"

// One thread at a time. Shares nothing with a library of the host that does the same.
class DBusConnection {
 public:
  // The session's bus; null when there is none or it does not let us in.
  static std::unique_ptr<DBusConnection> Open();

  const std::string& UniqueName() const { return mName; }
  int Fd() const { return mSocket.Get(); }
  // Sends a call or an answer with a serial number of its own, which comes back; 0 when the bus has
  // gone.
  uint32_t Send(DBusMessage message);
  // Takes what has come in, without waiting. False when the bus has gone.
  bool Receive();
  std::optional<DBusMessage> Next();  // of what was received

 private:
  explicit DBusConnection(FileDescriptor socket) : mSocket(std::move(socket)) {}
  bool Authenticate();
  bool SayHello();
  bool WaitForInput();
  bool SendAll(const char* data, size_t size);
  std::string ReceiveLine();

  FileDescriptor mSocket;
  std::string mName;      // ours on the bus
  std::string mReceived;  // not taken yet
  uint32_t mLastSerial = 0;
  bool mBroken = false;
};
