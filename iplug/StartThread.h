// Starting threads that take nothing over from the thread that starts them.
#pragma once

#include <signal.h>

#include <thread>
#include <utility>

// Blocks, for a scope, all signals that a host may want to handle on its own threads. Faults of the
// thread itself stay deliverable, so that a host's crash report still works.
class SignalsBlocked {
 public:
  SignalsBlocked();
  ~SignalsBlocked();
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t mBefore;
};

// Gives the calling thread the system's default policy and the mask of signals above; where the
// system has them per thread, also the niceness and the processors of the process. What the system
// refuses stays as it was.
void UseDefaultScheduling();
// What differs between systems; in StartThreadLinux.cpp or StartThreadPosix.cpp.
void UseProcessorsOfProcess();
void NameThisThread(const char* name);  // as process lists and debuggers show it

// Runs `run` on a new thread of that name, at most 15 characters, a literal. A thread started from
// a host's audio callback would otherwise run at real-time priority on the audio thread's own
// processor and keep the audio waiting. Any thread; throws std::system_error like std::thread.
template <typename Run>
std::thread StartThread(const char* name, Run run) {
  const SignalsBlocked signals;
  return std::thread([name, run = std::move(run)]() mutable {
    NameThisThread(name);
    UseDefaultScheduling();
    run();
  });
}
