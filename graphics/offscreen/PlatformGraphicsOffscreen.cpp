// The editor of a build without a window layer.
#include "graphics/IGraphicsOffscreen.h"
#include "graphics/PlatformGraphics.h"

std::unique_ptr<IGraphics> MakePlatformGraphics(IPlugBase* plug, int width, int height, int fps,
                                                const char* bundleID) {
  auto graphics = std::make_unique<IGraphicsOffscreen>(plug, width, height, fps);
  graphics->SetBundleID(bundleID);
  return graphics;
}
