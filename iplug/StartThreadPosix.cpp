// Systems on which niceness and processors are those of the whole process.
#include "iplug/StartThread.h"

void UseProcessorsOfProcess() {}

void NameThisThread(const char*) {}
