// Messages of the desktop's bus: writing and reading of their bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Appends values in the order of a signature, in this machine's byte order.
class DBusWriter {
 public:
  void Byte(uint8_t v) { mBytes.push_back(v); }
  void U32(uint32_t v);
  void Bool(bool v) { U32(v ? 1 : 0); }
  void String(std::string_view text);  // and object paths
  void Signature(std::string_view text);
  void Align(size_t boundary);  // a struct or an entry of a dictionary begins at 8
  // An array: its elements are what is appended until it is closed. `boundary` is theirs.
  size_t OpenArray(size_t boundary);
  void CloseArray(size_t opened);
  void Append(const std::vector<uint8_t>& bytes);

  const std::vector<uint8_t>& Bytes() const { return mBytes; }

 private:
  void Put(size_t at, uint32_t v);

  std::vector<uint8_t> mBytes;
  std::vector<size_t> mStarts;  // of the open arrays' first elements
};

// Takes values out again. Whatever the bytes, nothing is read beyond them: from the first value
// that is not whole on, all are 0 or "".
class DBusReader {
 public:
  explicit DBusReader(std::string_view bytes) : mBytes(bytes) {}

  bool IsGood() const { return mGood; }
  bool AtEnd(size_t end) const { return !mGood || mAt >= end; }
  uint8_t Byte();
  uint32_t U32();
  std::string String();
  std::string Signature();
  void Align(size_t boundary);
  size_t Array(size_t boundary);       // position behind its last element
  void Skip(std::string_view& types);  // one value, and its type in front of `types`
  size_t At() const { return mAt; }

 private:
  bool Take(size_t count);  // false, and good no more, if there are not so many bytes
  void SkipMembers(std::string_view types);
  std::string Text(size_t length);

  std::string_view mBytes;
  size_t mAt = 0;
  bool mGood = true;
  int mDepth = 0;  // of nested values
};

struct DBusMessage {
  enum EType : uint8_t { kCall = 1, kReturn = 2, kError = 3, kSignal = 4 };

  uint8_t type = kCall;
  uint32_t serial = 0, replySerial = 0;
  std::string path, interface, member, destination, sender, signature;
  std::string body;

  std::vector<uint8_t> Bytes() const;
  // Takes the first message off the front of `bytes`; none when it is not whole yet. What can be
  // no message empties `bytes` and sets `broken`.
  static std::optional<DBusMessage> TakeFrom(std::string& bytes, bool& broken);
};
