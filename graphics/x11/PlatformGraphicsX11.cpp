// The editor of a platform with X servers.
#include "graphics/PlatformGraphics.h"
#include "graphics/x11/IGraphicsX11.h"

std::unique_ptr<IGraphics> MakePlatformGraphics(IPlugBase* plug, int width, int height, int fps,
                                                const char* bundleID) {
  auto graphics = std::make_unique<IGraphicsX11>(plug, width, height, fps);
  graphics->SetBundleID(bundleID);
  return graphics;
}
