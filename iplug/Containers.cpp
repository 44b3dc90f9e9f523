// Growth of the framework's buffers and strings.
#include "iplug/Containers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

HeapBuffer::~HeapBuffer() { std::free(mBuf); }

std::int64_t HeapBuffer::AllocationFor(int newSize) const {
  std::int64_t step = std::max(newSize / 2, mGranularity);
  std::int64_t alloc = 0;
  if (mGranularity < 4096) {
    alloc = newSize + step;
  } else {
    // Just under page multiples, so that the allocator's own header does not cost a page.
    step = std::clamp<std::int64_t>(step & ~std::int64_t{4095}, 4096, 4194304);
    alloc = ((newSize + step + 96) & ~std::int64_t{4095}) - 96;
  }
  return std::max<std::int64_t>(alloc, mMinAlloc);
}

bool HeapBuffer::Reallocate(int newAlloc, int newSize) {
  void* moved = std::realloc(mBuf, static_cast<std::size_t>(newAlloc));
  if (!moved) {
    moved = std::malloc(static_cast<std::size_t>(newAlloc));
    if (!moved) return false;
    const int kept = std::min(mSize, newSize);
    if (kept > 0) std::memcpy(moved, mBuf, static_cast<std::size_t>(kept));
    std::free(mBuf);
  }
  mBuf = moved;
  mAlloc = newAlloc;
  return true;
}

void* HeapBuffer::Resize(int newSize, bool resizeDown) {
  if (newSize == mSize || newSize < 0) return Get();
  const bool muchSmaller = resizeDown && newSize < mSize && newSize < mAlloc / 2 &&
                           newSize < std::int64_t{mAlloc} - 4 * std::int64_t{mGranularity};
  if (newSize > mAlloc || muchSmaller) {
    const std::int64_t alloc = AllocationFor(newSize);
    if (alloc > INT_MAX || !Reallocate(static_cast<int>(alloc), newSize)) return Get();
  }
  mSize = newSize;
  return Get();
}

void HeapBuffer::Swap(HeapBuffer& other) {
  std::swap(mBuf, other.mBuf);
  std::swap(mGranularity, other.mGranularity);
  std::swap(mAlloc, other.mAlloc);
  std::swap(mSize, other.mSize);
  std::swap(mMinAlloc, other.mMinAlloc);
}

const char* HeapString::Get() const {
  const void* text = mBuf.Get();
  return text ? static_cast<const char*>(text) : "";
}

int HeapString::GetLength() const { return mBuf.GetSize() > 0 ? mBuf.GetSize() - 1 : 0; }

void HeapString::Set(const char* text) { Set(text, INT_MAX - 1); }

void HeapString::Set(const char* text, int length) {
  const std::size_t limit = static_cast<std::size_t>(std::max(length, 0));
  Write(0, text, text ? static_cast<int>(strnlen(text, limit)) : 0);
}

void HeapString::Append(const char* text) {
  if (!text) return;
  const int position = GetLength();
  Write(position, text,
        static_cast<int>(strnlen(text, static_cast<std::size_t>(INT_MAX - 1 - position))));
}

void HeapString::Write(int position, const char* text, int length) {
  const int size = position + length + 1;
  // Text may lie in this very buffer: then it must not move before the copy.
  const char* old = Get();
  const bool own = text >= old && text < old + mBuf.GetSize();
  const std::ptrdiff_t offset = own ? text - old : 0;
  mBuf.Resize(std::max(size, mBuf.GetSize()), false);
  if (mBuf.GetSize() < size) return;
  char* data = static_cast<char*>(mBuf.Get());
  if (length > 0) {
    std::memmove(data + position, own ? data + offset : text, static_cast<std::size_t>(length));
  }
  data[size - 1] = 0;
  mBuf.Resize(size);
}
