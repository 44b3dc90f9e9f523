// Reads and writes of state bytes, and the header of host chunks.
#include "iplug/ByteChunk.h"

#include <cstdint>
#include <cstring>

#include "iplug/Numbers.h"

namespace {

constexpr char kMagic[4] = {'t', 'f', 'f', 'p'};

}  // namespace

int ByteChunk::PutBytes(const void* data, int size) {
  const int old = Size();
  const std::int64_t wanted = std::int64_t{old} + size;
  if (size <= 0 || SaturateToInt(wanted) != wanted) return old;
  mBytes.Resize(static_cast<int>(wanted));
  if (Size() != wanted) return old;
  std::memcpy(static_cast<char*>(GetBytes()) + old, data, static_cast<std::size_t>(size));
  return Size();
}

int ByteChunk::GetBytes(void* data, int size, int startPos) const {
  if (startPos < 0 || size < 0 || size > Size() || startPos > Size() - size) return -1;
  if (size > 0) {
    std::memcpy(data, static_cast<const char*>(GetBytes()) + startPos,
                static_cast<std::size_t>(size));
  }
  return startPos + size;
}

int ByteChunk::PutStr(const char* text) {
  const std::int32_t length = SaturateToInt(static_cast<std::int64_t>(std::strlen(text)));
  Put(&length);
  return PutBytes(text, length);
}

int ByteChunk::GetStr(HeapString* text, int startPos) const {
  std::int32_t length = 0;
  const int begin = Get(&length, startPos);
  if (begin < 0) return -1;
  const std::int64_t endPos = std::int64_t{begin} + length;
  if (length > 0 && endPos <= Size()) {
    text->Set(static_cast<const char*>(GetBytes()) + begin, length);
  }
  return SaturateToInt(endPos);
}

void ByteChunk::Resize(int newSize) {
  const int old = Size();
  mBytes.Resize(newSize);
  if (Size() > old) {
    std::memset(static_cast<char*>(GetBytes()) + old, 0, static_cast<std::size_t>(Size() - old));
  }
}

void InitChunkWithIPlugVer(ByteChunk* chunk) {
  chunk->Clear();
  chunk->PutBytes(kMagic, sizeof kMagic);
  const std::int32_t version = kIPlugVersion;
  chunk->Put(&version);
}

int GetIPlugVerFromChunk(const ByteChunk* chunk, int* pos) {
  char magic[4] = {};
  const int behindMagic = chunk->Get(&magic, *pos);
  if (behindMagic < 0 || std::memcmp(magic, kMagic, sizeof kMagic) != 0) return 0;
  std::int32_t version = 0;
  *pos = chunk->Get(&version, behindMagic);
  return *pos < 0 ? 0 : version;
}
