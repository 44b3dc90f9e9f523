// The checksum of PNG chunks, to make damaged files that pass it.
#pragma once

#include <cstddef>
#include <cstdint>

// Writes the checksum behind `length` bytes of a chunk's type and data.
inline void WritePngCrc(unsigned char* chunk, std::size_t length) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 0; i < length; ++i) {
    crc ^= chunk[i];
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  for (std::size_t i = 0; i < 4; ++i) {
    chunk[length + i] = static_cast<unsigned char>(~crc >> (24 - 8 * i));
  }
}
