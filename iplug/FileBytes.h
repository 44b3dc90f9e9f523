// Whole files as bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// False when the file cannot be read or holds more than 64 MiB.
bool ReadFileBytes(const char* path, std::vector<std::uint8_t>* bytes);

// Writes beside the target and renames, so that a failure leaves the target as it was and no file
// behind. False when that fails, or when the target is there and no regular file.
bool WriteFileBytes(const char* path, const void* data, std::size_t size);
