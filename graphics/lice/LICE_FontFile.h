// Finding the file of a font. Private to the rasteriser.
#pragma once

#include <string>

#include "graphics/lice/LICE_PlatformFont.h"

struct LICE_FontFile {
  std::string path;  // empty: no font at all
  int index = 0;     // face within the file
  // What was asked for and the face does not have.
  bool needs_bold = false;
  bool needs_slant = false;
};

// The named family if it is installed, else a monospaced substitute. Any thread.
LICE_FontFile LICE_FindFontFile(const LICE_FontRequest& request);
