// The seam between the product and the platform: which class of editor it gets. Each platform's
// folder defines the one function; the build links one of them.
#pragma once

#include <memory>

#include "graphics/IGraphics.h"

// `bundleID` names the bundle that holds the bitmaps, where the platform has bundles.
std::unique_ptr<IGraphics> MakePlatformGraphics(IPlugBase* plug, int width, int height, int fps,
                                                const char* bundleID);
