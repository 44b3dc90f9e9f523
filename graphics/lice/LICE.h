// The whole rasteriser: bitmaps, drawing, PNG images and text.
#pragma once

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/lice/LICE_CachedFont.h"
#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_PNG.h"
#include "graphics/lice/LICE_Pixel.h"
#include "graphics/lice/LICE_PlatformFont.h"
