// The process-wide cache of bitmaps, and bitmaps made from others.
#include <vector>

#include "graphics/IGraphics.h"
#include "graphics/lice/LICE.h"
#include "iplug/PlugLock.h"

namespace {

// Pixels that every editor of the process shares, until the module is unloaded.
class BitmapCache {
 public:
  PlugLock& Lock() { return mLock; }

  // Null when the id is not there. Needs the lock.
  LICE_IBitmap* Find(int id) const {
    for (const Entry& entry : mEntries) {
      if (entry.id == id) return entry.bitmap.get();
    }
    return nullptr;
  }

  // Takes ownership. Needs the lock.
  void Add(int id, LICE_IBitmap* bitmap) {
    mEntries.push_back({id, std::unique_ptr<LICE_IBitmap>(bitmap)});
  }

  // Deletes it, if it is here. Needs the lock.
  void Remove(const void* bitmap) {
    std::erase_if(mEntries, [bitmap](const Entry& entry) { return entry.bitmap.get() == bitmap; });
  }

 private:
  struct Entry {
    int id;  // kDerived for what no editor can ask for
    std::unique_ptr<LICE_IBitmap> bitmap;
  };

  PlugLock mLock;  // guards mEntries
  std::vector<Entry> mEntries;
};

constexpr int kDerived = -1;
BitmapCache gBitmaps;

IBitmap Retained(std::unique_ptr<LICE_MemBitmap> pixels, int n, bool framesAreHorizontal) {
  const int w = pixels->getWidth();
  const int h = pixels->getHeight();
  IBitmap bitmap(static_cast<LICE_IBitmap*>(pixels.release()), w, h, n, framesAreHorizontal);
  IGraphics::RetainBitmap(&bitmap);
  return bitmap;
}

}  // namespace

IBitmap IGraphics::LoadIBitmap(int id, const char* name, int nStates, bool framesAreHorizontal) {
  const PlugLock::Guard guard(gBitmaps.Lock());
  LICE_IBitmap* pixels = gBitmaps.Find(id);
  if (!pixels) {
    pixels = OSLoadBitmap(id, name);
    if (!pixels) return {nullptr, 0, 0, nStates, framesAreHorizontal};
    gBitmaps.Add(id, pixels);
  }
  return {pixels, pixels->getWidth(), pixels->getHeight(), nStates, framesAreHorizontal};
}

void IGraphics::RetainBitmap(IBitmap* bitmap) {
  const PlugLock::Guard guard(gBitmaps.Lock());
  if (bitmap->mData) gBitmaps.Add(kDerived, static_cast<LICE_IBitmap*>(bitmap->mData));
}

void IGraphics::ReleaseBitmap(IBitmap* bitmap) {
  const PlugLock::Guard guard(gBitmaps.Lock());
  gBitmaps.Remove(bitmap->mData);
  bitmap->mData = nullptr;
}

IBitmap IGraphics::ScaleBitmap(const IBitmap* bitmap, int w, int h) {
  auto scaled = std::make_unique<LICE_MemBitmap>(w, h);
  LICE_ScaledBlit(scaled.get(), static_cast<LICE_IBitmap*>(bitmap->mData), 0, 0, w, h, 0.0f, 0.0f,
                  static_cast<float>(bitmap->W), static_cast<float>(bitmap->H), 1.0f,
                  LICE_BLIT_MODE_COPY | LICE_BLIT_FILTER_BILINEAR);
  return Retained(std::move(scaled), bitmap->N, bitmap->mFramesAreHorizontal);
}

IBitmap IGraphics::CropBitmap(const IBitmap* bitmap, const IRECT* rect) {
  auto cropped = std::make_unique<LICE_MemBitmap>(rect->W(), rect->H());
  LICE_Blit(cropped.get(), static_cast<LICE_IBitmap*>(bitmap->mData), 0, 0, rect->L, rect->T,
            rect->W(), rect->H(), 1.0f, LICE_BLIT_MODE_COPY);
  return Retained(std::move(cropped), bitmap->N, bitmap->mFramesAreHorizontal);
}
