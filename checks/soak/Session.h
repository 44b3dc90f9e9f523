// One instance of the built module from its opening to its closing, as a restless host drives it.
#pragma once

#include <atomic>

#include "tests/support/Random.h"

// What all sessions did. Any thread.
struct Tally {
  std::atomic<int> instances{0}, editors{0}, changes{0}, formats{0}, blocks{0}, findings{0};
};

// Opens an instance and does `actions` things to it while a thread of its own plays noise through
// it: turns parameters, loads programs and chunks, changes rate and block, opens the editor, uses
// it and closes it; then closes the instance, whatever it is at. Rooms stay small enough to render
// in some seconds under the sanitizers. Without a server, or if `window` is false, no editor.
void RunSession(Random random, int actions, bool window, Tally& tally);

// The shortest life with everything in it, each step after the one before: opening, a small room
// rendered by the worker and by the host's thread, sound, an editor opened, used and closed,
// closing. For tools that slow a program down many times. The host waits for the worker by a change
// of the block size, which joins it: the flag that otherwise hands a response over is an order that
// only tools which understand atomic operations can see.
void RunTour(bool window, Tally& tally);
