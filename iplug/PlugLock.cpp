// Taking, releasing and giving up the plug-in's recursive lock.
#include "iplug/PlugLock.h"

PlugLock::Owner PlugLock::LoadOwner() const {
  return std::atomic_ref<Owner>(mOwner).load(std::memory_order_relaxed);
}

void PlugLock::StoreOwner(Owner owner) {
  std::atomic_ref<Owner>(mOwner).store(owner, std::memory_order_relaxed);
}

void PlugLock::Take() {
  if (IsMine()) {
    ++mDepth;
    return;
  }
  mMutex.lock();
  StoreOwner(std::this_thread::get_id());
  mDepth = 0;
}

void PlugLock::Release() {
  if (mDepth-- > 0) return;
  StoreOwner(Owner{});
  mMutex.unlock();
}

int PlugLock::GiveUp() {
  if (!IsMine()) return 0;
  const int holds = mDepth + 1;
  mDepth = 0;
  Release();
  return holds;
}

void PlugLock::Retake(int holds) {
  for (int i = 0; i < holds; ++i) Take();
}
