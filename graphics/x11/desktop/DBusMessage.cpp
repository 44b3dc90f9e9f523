// The wire format of the bus: values aligned to their size, a header of numbered fields, a body.
#include "graphics/x11/desktop/DBusMessage.h"

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little);

namespace {

constexpr uint32_t kLongest = 1 << 26;  // bytes of an array or a body
constexpr int kDeepest = 32;
constexpr size_t kFixedHeader = 16;  // with the length of the fields

enum EField : uint8_t {
  kPath = 1,
  kInterface,
  kMember,
  kErrorName,
  kReplySerial,
  kDestination,
  kSender,
  kSignature
};

size_t AlignmentOf(char type) {
  switch (type) {
    case 'y':
    case 'g':
    case 'v': return 1;
    case 'n':
    case 'q': return 2;
    case 'x':
    case 't':
    case 'd':
    case '(':
    case '{': return 8;
    default: return 4;
  }
}

size_t SizeOfFixed(char type) {
  switch (type) {
    case 'y': return 1;
    case 'n':
    case 'q': return 2;
    case 'b':
    case 'i':
    case 'u':
    case 'h': return 4;
    case 'x':
    case 't':
    case 'd': return 8;
    default: return 0;
  }
}

// Length of the first complete type of a signature, 0 when there is none.
size_t LengthOfType(std::string_view types) {
  size_t i = 0;
  while (i < types.size() && types[i] == 'a') ++i;
  if (i >= types.size()) return 0;
  if (types[i] != '(' && types[i] != '{') return i + 1;
  for (int depth = 0; i < types.size(); ++i) {
    if (types[i] == '(' || types[i] == '{') ++depth;
    if (types[i] == ')' || types[i] == '}') --depth;
    if (depth == 0) return i + 1;
  }
  return 0;
}

size_t Aligned(size_t at, size_t boundary) { return (at + boundary - 1) / boundary * boundary; }

void WriteField(DBusWriter& w, EField field, char type, const std::string& text) {
  if (text.empty()) return;
  w.Align(8);
  w.Byte(field);
  w.Signature({&type, 1});
  if (type == 'g') {
    w.Signature(text);
  } else {
    w.String(text);
  }
}

void ReadField(DBusReader& r, DBusMessage& message) {
  r.Align(8);
  const uint8_t field = r.Byte();
  const std::string type = r.Signature();
  std::string* const texts[] = {
      nullptr, &message.path,        &message.interface, &message.member,   nullptr,
      nullptr, &message.destination, &message.sender,    &message.signature};
  std::string* text = field < std::size(texts) ? texts[field] : nullptr;
  if (field == kReplySerial && type == "u") {
    message.replySerial = r.U32();
  } else if (text && (type == "s" || type == "o")) {
    *text = r.String();
  } else if (text && type == "g") {
    *text = r.Signature();
  } else {
    std::string_view types = type;
    r.Skip(types);
  }
}

}  // namespace

void DBusWriter::Align(size_t boundary) { mBytes.resize(Aligned(mBytes.size(), boundary)); }

void DBusWriter::Put(size_t at, uint32_t v) { std::memcpy(mBytes.data() + at, &v, sizeof v); }

void DBusWriter::U32(uint32_t v) {
  Align(4);
  mBytes.resize(mBytes.size() + sizeof v);
  Put(mBytes.size() - sizeof v, v);
}

void DBusWriter::String(std::string_view text) {
  U32(static_cast<uint32_t>(text.size()));
  mBytes.insert(mBytes.end(), text.begin(), text.end());
  Byte(0);
}

void DBusWriter::Signature(std::string_view text) {
  Byte(static_cast<uint8_t>(text.size()));
  mBytes.insert(mBytes.end(), text.begin(), text.end());
  Byte(0);
}

size_t DBusWriter::OpenArray(size_t boundary) {
  U32(0);
  const size_t opened = mBytes.size();
  Align(boundary);
  mStarts.push_back(mBytes.size());
  return opened;
}

void DBusWriter::CloseArray(size_t opened) {
  Put(opened - 4, static_cast<uint32_t>(mBytes.size() - mStarts.back()));
  mStarts.pop_back();
}

void DBusWriter::Append(const std::vector<uint8_t>& bytes) {
  mBytes.insert(mBytes.end(), bytes.begin(), bytes.end());
}

bool DBusReader::Take(size_t count) {
  mGood = mGood && count <= mBytes.size() - mAt;
  if (mGood) mAt += count;
  return mGood;
}

void DBusReader::Align(size_t boundary) { Take(Aligned(mAt, boundary) - mAt); }

uint8_t DBusReader::Byte() { return Take(1) ? static_cast<uint8_t>(mBytes[mAt - 1]) : 0; }

uint32_t DBusReader::U32() {
  Align(4);
  uint32_t v = 0;
  if (Take(sizeof v)) std::memcpy(&v, mBytes.data() + mAt - sizeof v, sizeof v);
  return v;
}

std::string DBusReader::Text(size_t length) {
  if (!Take(length)) return "";
  std::string text(mBytes.substr(mAt - length, length));
  Take(1);
  return text;
}

std::string DBusReader::String() { return Text(U32()); }

std::string DBusReader::Signature() { return Text(Byte()); }

size_t DBusReader::Array(size_t boundary) {
  const uint32_t length = U32();
  Align(boundary);
  if (length > kLongest || length > mBytes.size() - mAt) mGood = false;
  return mAt + length;
}

void DBusReader::SkipMembers(std::string_view types) {
  while (mGood && !types.empty()) Skip(types);
}

void DBusReader::Skip(std::string_view& types) {
  const size_t length = LengthOfType(types);
  if (length == 0 || mDepth >= kDeepest) mGood = false;
  if (!mGood) return;
  const std::string_view type = types.substr(0, length);
  types.remove_prefix(length);
  ++mDepth;
  Align(AlignmentOf(type[0]));
  if (const size_t size = SizeOfFixed(type[0])) {
    Take(size);
  } else if (type[0] == 's' || type[0] == 'o') {
    String();
  } else if (type[0] == 'g') {
    Signature();
  } else if (type[0] == 'v') {
    const std::string inner = Signature();
    SkipMembers(inner);
  } else if (type[0] == 'a') {
    const size_t end = Array(AlignmentOf(type[1]));
    if (mGood) mAt = end;
  } else if (type[0] == '(' || type[0] == '{') {
    SkipMembers(type.substr(1, length - 2));
  } else {
    mGood = false;
  }
  --mDepth;
}

std::vector<uint8_t> DBusMessage::Bytes() const {
  DBusWriter w;
  w.Byte('l');
  w.Byte(type);
  w.Byte(0);
  w.Byte(1);  // version of the protocol
  w.U32(static_cast<uint32_t>(body.size()));
  w.U32(serial);
  const size_t fields = w.OpenArray(8);
  WriteField(w, kPath, 'o', path);
  WriteField(w, kInterface, 's', interface);
  WriteField(w, kMember, 's', member);
  if (replySerial) {
    w.Align(8);
    w.Byte(kReplySerial);
    w.Signature("u");
    w.U32(replySerial);
  }
  WriteField(w, kDestination, 's', destination);
  WriteField(w, kSignature, 'g', signature);
  w.CloseArray(fields);
  w.Align(8);
  w.Append({body.begin(), body.end()});
  return w.Bytes();
}

std::optional<DBusMessage> DBusMessage::TakeFrom(std::string& bytes, bool& broken) {
  if (bytes.size() < kFixedHeader) return std::nullopt;
  DBusReader r(bytes);
  const bool isLittle = r.Byte() == 'l';
  DBusMessage message;
  message.type = r.Byte();
  r.Byte();  // flags
  const bool isKnown = r.Byte() == 1;
  const uint32_t bodySize = r.U32();
  message.serial = r.U32();
  const uint32_t fieldsSize = r.U32();
  if (!isLittle || !isKnown || bodySize > kLongest || fieldsSize > kLongest) {
    broken = true;
    bytes.clear();
    return std::nullopt;
  }
  const size_t bodyAt = Aligned(kFixedHeader + fieldsSize, 8);
  if (bytes.size() < bodyAt + bodySize) return std::nullopt;
  while (!r.AtEnd(kFixedHeader + fieldsSize)) ReadField(r, message);
  message.body = bytes.substr(bodyAt, bodySize);
  bytes.erase(0, bodyAt + bodySize);
  return message;
}
