// Small files read whole, and why one cannot be read.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Throws Failure (ExitCode::kInput) with the system's reason unless `path` is a readable, regular
// file with something in it.
void RequireReadable(const std::string& path);

// All bytes of a file of at most 64 MiB. Throws Failure (ExitCode::kInput).
std::vector<std::uint8_t> ReadWholeFile(const std::string& path);
