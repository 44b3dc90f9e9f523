// Reading PNG images. Tolmara loads its pictures from files.
#pragma once

#include <cstddef>

#include "graphics/lice/LICE_Bitmap.h"

// Reads a PNG file of any kind as 32-bit pixels with unassociated alpha into `into`, or into a new
// LICE_MemBitmap of line alignment 4, which the caller then owns, when `into` is null. Null, and
// `into` left empty, for a file that can't be read, is truncated or fails a checksum, or is larger
// than 16384 on a side or 2^24 pixels.
LICE_IBitmap* LICE_LoadPNG(const char* path, LICE_IBitmap* into = nullptr);

// The same from `size` bytes of memory.
LICE_IBitmap* LICE_LoadPNGFromMemory(const void* data, std::size_t size,
                                     LICE_IBitmap* into = nullptr);
