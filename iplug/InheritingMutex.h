// A mutex whose holder is not kept from running by threads of less priority than the waiting one.
#pragma once

#include <pthread.h>

// A plain mutex with priority inheritance where the system offers it: while a real-time audio
// thread waits, the thread that holds the mutex runs at the audio thread's priority, so that no
// thread of a priority between theirs makes the audio late. Any thread; unlock only by the holder.
class InheritingMutex {
 public:
  InheritingMutex();
  ~InheritingMutex() { pthread_mutex_destroy(&mMutex); }
  InheritingMutex(const InheritingMutex&) = delete;
  InheritingMutex& operator=(const InheritingMutex&) = delete;

  void lock() { pthread_mutex_lock(&mMutex); }
  void unlock() { pthread_mutex_unlock(&mMutex); }

 private:
  pthread_mutex_t mMutex;
};
