// Trace points: they stay in the code with their formats and print nothing.
#pragma once

// Silent. Call as Trace("Tag", __LINE__, "%d", ...).
[[gnu::format(printf, 3, 4)]] inline void Trace(const char*, int, const char*, ...) {}
