// The plug-in's recursive lock. Tolmara uses all of it.
#pragma once

#include <atomic>
#include <thread>

#include "iplug/InheritingMutex.h"

// A recursive lock made of a plain mutex, the id of the owning thread and a depth. One of them
// keeps a plug-in's audio, host and editor threads apart. Any thread; Release only by the owner.
class PlugLock {
 public:
  PlugLock() = default;
  PlugLock(const PlugLock&) = delete;
  PlugLock& operator=(const PlugLock&) = delete;

  void Take();
  void Release();

  // Releases however often this thread holds the lock, so that another thread can get through while
  // this one waits for it. Returns how often that was, 0 when another thread or nobody holds it.
  int GiveUp();
  // Takes the lock again as often as GiveUp said.
  void Retake(int holds);

  bool IsMine() const { return LoadOwner() == std::this_thread::get_id(); }

  class Guard {
   public:
    explicit Guard(PlugLock& lock) : mLock(lock) { mLock.Take(); }
    ~Guard() { mLock.Release(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    PlugLock& mLock;
  };

  // Gives the lock up for a scope.
  class Pause {
   public:
    explicit Pause(PlugLock& lock) : mLock(lock), mHolds(lock.GiveUp()) {}
    ~Pause() { mLock.Retake(mHolds); }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    PlugLock& mLock;
    int mHolds;
  };

 private:
  using Owner = std::thread::id;
  Owner LoadOwner() const;
  void StoreOwner(Owner owner);

  InheritingMutex mMutex;
  // Read without the mutex: only the owner can find its own id there.
  alignas(std::atomic_ref<Owner>::required_alignment) mutable Owner mOwner{};
  int mDepth = 0;  // holds beyond the first; the owner's
};
