// The framework's storage types: growable bytes, text and lists of pointers. Tolmara uses all of
// it, through the base class and the editor.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

// Growable raw storage. Resizing that fails leaves size and contents, so callers that care compare
// the size afterwards. Bytes gained are not initialised.
class HeapBuffer {
 public:
  explicit HeapBuffer(int granularity = 4096) : mGranularity(granularity) {}
  ~HeapBuffer();
  HeapBuffer(const HeapBuffer&) = delete;
  HeapBuffer& operator=(const HeapBuffer&) = delete;

  // Makes the size `newSize` bytes and returns the data. With `resizeDown` a buffer that shrinks a
  // lot gives memory back; without it a smaller size never moves the data.
  void* Resize(int newSize, bool resizeDown = true);
  void Swap(HeapBuffer& other);

  void* Get() const { return mSize ? mBuf : nullptr; }
  int GetSize() const { return mSize; }

 private:
  std::int64_t AllocationFor(int newSize) const;
  bool Reallocate(int newAlloc, int newSize);

  void* mBuf = nullptr;
  std::int32_t mGranularity;
  std::int32_t mAlloc = 0;     // bytes allocated
  std::int32_t mSize = 0;      // bytes in use
  std::int32_t mMinAlloc = 0;  // least allocation
};

// Text with its end mark; an empty one reads as "".
class HeapString {
 public:
  HeapString() = default;
  explicit HeapString(const char* text) { Set(text); }

  void Set(const char* text);
  // The first `length` characters of `text`, or fewer if it ends before.
  void Set(const char* text, int length);
  void Append(const char* text);

  const char* Get() const;
  int GetLength() const;  // characters
  bool IsEmpty() const { return GetLength() == 0; }

 private:
  void Write(int position, const char* text, int length);

  HeapBuffer mBuf{128};
};

// A list of pointers. It does not own what they point at.
template <typename T>
class PointerList {
 public:
  T* Add(T* item) { return Insert(GetSize(), item); }
  // Puts `item` before the entry at `idx`, clamped to the list. Null if there is no memory for it.
  T* Insert(int idx, T* item);
  // Takes the entry out; with `destroy` also deletes what it points at. Nothing out of range.
  void Delete(int idx, bool destroy = false);
  // Takes all entries out, from last to first.
  void Empty(bool destroy = false);

  T* Get(int idx) const { return idx >= 0 && idx < GetSize() ? Entries()[idx] : nullptr; }
  int GetSize() const { return mBuf.GetSize() / static_cast<int>(sizeof(T*)); }

  T** begin() const { return Entries(); }
  T** end() const { return Entries() + GetSize(); }

 private:
  static constexpr int kEntry = static_cast<int>(sizeof(T*));
  T** Entries() const { return static_cast<T**>(mBuf.Get()); }

  HeapBuffer mBuf{4096};
};

// A list that deletes what it still holds, from last to first, when it goes.
template <typename T>
class OwnedPointerList : public PointerList<T> {
 public:
  ~OwnedPointerList() { this->Empty(true); }

  // Take the item over; throw when there is no memory for its entry.
  T* AddOwned(std::unique_ptr<T> item) { return InsertOwned(this->GetSize(), std::move(item)); }
  T* InsertOwned(int idx, std::unique_ptr<T> item) {
    if (!this->Insert(idx, item.get())) throw std::bad_alloc();
    return item.release();
  }
};

template <typename T>
T* PointerList<T>::Insert(int idx, T* item) {
  const int n = GetSize();
  if (idx < 0) idx = 0;
  if (idx > n) idx = n;
  mBuf.Resize((n + 1) * kEntry);
  if (GetSize() != n + 1) return nullptr;
  T** entries = Entries();
  std::memmove(entries + idx + 1, entries + idx, static_cast<std::size_t>(n - idx) * sizeof(T*));
  return entries[idx] = item;
}

template <typename T>
void PointerList<T>::Delete(int idx, bool destroy) {
  const int n = GetSize();
  if (idx < 0 || idx >= n) return;
  T** entries = Entries();
  T* item = entries[idx];
  std::memmove(entries + idx, entries + idx + 1,
               static_cast<std::size_t>(n - 1 - idx) * sizeof(T*));
  mBuf.Resize((n - 1) * kEntry);
  if (destroy) delete item;
}

template <typename T>
void PointerList<T>::Empty(bool destroy) {
  for (int i = GetSize() - 1; i >= 0; --i) Delete(i, destroy);
}
