// The signals and the policy of a thread of our own.
#include "iplug/StartThread.h"

#include <pthread.h>
#include <sched.h>

namespace {

sigset_t HostSignals() {
  sigset_t signals;
  sigfillset(&signals);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS, SIGPROF}) {
    sigdelset(&signals, fault);
  }
  return signals;
}

}  // namespace

SignalsBlocked::SignalsBlocked() {
  const sigset_t signals = HostSignals();
  pthread_sigmask(SIG_BLOCK, &signals, &mBefore);
}

SignalsBlocked::~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

void UseDefaultScheduling() {
  const sigset_t signals = HostSignals();
  pthread_sigmask(SIG_SETMASK, &signals, nullptr);
  const sched_param none{};
  pthread_setschedparam(pthread_self(), SCHED_OTHER, &none);
  UseProcessorsOfProcess();
}
