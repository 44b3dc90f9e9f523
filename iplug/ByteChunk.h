// The growable byte string in which a plug-in's state travels. Tolmara uses all of it, through the
// base class.
#pragma once

#include <bit>

#include "iplug/Containers.h"

// Values lie in the machine's byte order, and saved state relies on it.
static_assert(std::endian::native == std::endian::little, "state chunks are little-endian");

// Bytes appended at the end and read at positions. A read returns the position after the bytes
// read, or -1 without touching its target; any position is safe to ask for. No lock.
class ByteChunk {
 public:
  template <typename T>
  int Put(const T* value) {
    return PutBytes(value, static_cast<int>(sizeof(T)));
  }
  template <typename T>
  int Get(T* value, int startPos) const {
    return GetBytes(value, static_cast<int>(sizeof(T)), startPos);
  }

  int PutStr(const char* text);  // int32 length, then the characters without end mark
  // `text` takes the characters up to a zero byte. A length that runs past the end returns a
  // position past the end, so that the next read fails.
  int GetStr(HeapString* text, int startPos) const;

  // Returns the new size; the old one when there is no memory.
  int PutBytes(const void* data, int size);
  int GetBytes(void* data, int size, int startPos) const;
  int PutChunk(const ByteChunk* other) { return PutBytes(other->GetBytes(), other->Size()); }

  void Resize(int newSize);  // bytes gained are 0
  void Clear() { mBytes.Resize(0); }
  void Swap(ByteChunk& other) { mBytes.Swap(other.mBytes); }

  int Size() const { return mBytes.GetSize(); }
  void* GetBytes() const { return mBytes.Get(); }  // null when empty

 private:
  HeapBuffer mBytes{4096};
};

// The eight bytes in front of a host chunk: the text "tffp" and a version.
inline constexpr int kIPlugVersion = 0x00010000;

// Clears the chunk and writes the header.
void InitChunkWithIPlugVer(ByteChunk* chunk);
// The version, with `*pos` moved after the header. 0 without header; `*pos` is then -1 if the
// chunk ends inside one, else unchanged.
int GetIPlugVerFromChunk(const ByteChunk* chunk, int* pos);
