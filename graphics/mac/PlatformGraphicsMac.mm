// The editor of a build with Cocoa.
#include "graphics/PlatformGraphics.h"
#include "graphics/mac/IGraphicsMac.h"

std::unique_ptr<IGraphics> MakePlatformGraphics(IPlugBase* plug, int width, int height, int fps,
                                                const char* bundleID) {
  auto graphics = std::make_unique<IGraphicsMac>(plug, width, height, fps);
  graphics->SetBundleID(bundleID);
  return graphics;
}
