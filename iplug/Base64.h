// Bytes as text of the standard base64 alphabet. Tolmara uses none of it: its presets are tables,
// not blobs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Padded with "=" to a multiple of four characters.
std::string Base64Encode(const void* data, std::size_t size);

// Reads until a character outside the alphabet or the end and stores at most `size` bytes. Returns
// how many were stored.
std::size_t Base64Decode(const char* text, std::uint8_t* out, std::size_t size);
