// Name, niceness and processors of a thread, as Linux has them.
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include "iplug/StartThread.h"

// The process's own are those of its first thread, whose id is that of the process.
void UseProcessorsOfProcess() {
  const auto process = static_cast<id_t>(getpid());
  setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, process));
  cpu_set_t processors;
  if (sched_getaffinity(getpid(), sizeof processors, &processors) == 0) {
    sched_setaffinity(0, sizeof processors, &processors);
  }
}

void NameThisThread(const char* name) { pthread_setname_np(pthread_self(), name); }
