// Making the mutex.
#include "iplug/InheritingMutex.h"

InheritingMutex::InheritingMutex() {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
  // A kernel may know the protocol and yet not support it.
  if (pthread_mutex_init(&mMutex, &attributes) != 0) pthread_mutex_init(&mMutex, nullptr);
  pthread_mutexattr_destroy(&attributes);
}
