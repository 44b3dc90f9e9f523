// tolmara screenshot: the editor of Tolmara as a picture. The interface between host and plug-in
// has no way to draw without a window, so this command alone holds the plug-in's own code.
#include <png.h>

#include <filesystem>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "plugin/Tolmara.h"
#include "tools/commands/Commands.h"
#include "tools/commands/Settings.h"
#include "tools/host/BlockRunner.h"
#include "tools/io/AtomicFile.h"
#include "tools/io/Failure.h"

namespace {

struct ScreenshotOptions {
  Settings settings;
  std::string output;
};

AEffect* MakeTolmara(audioMasterCallback callback) {
  return ConstructUnderLock([](audioMasterCallback c) -> IPlugVST* { return new Tolmara(c); },
                            callback);
}

// The editor's pictures lie beside the plug-in.
void FindPictures() {
  const std::filesystem::path plugin = PluginHost::FindDefault();
  IGraphicsOffscreen::SetResourceFolder((plugin.parent_path() / "resources/img").string());
}

// Rows of red, green and blue from top to bottom. The canvas keeps alpha in the lowest byte.
std::vector<std::uint8_t> DrawAll(IGraphics& graphics) {
  IRECT all(0, 0, graphics.Width(), graphics.Height());
  graphics.Draw(&all);
  std::vector<std::uint8_t> rgb;
  const std::uint32_t* const pixels = graphics.GetBits();
  for (int i = 0; i < all.R * all.B; ++i) {
    for (int shift = 8; shift < 32; shift += 8) {
      rgb.push_back(static_cast<std::uint8_t>(pixels[i] >> shift));
    }
  }
  return rgb;
}

std::vector<std::uint8_t> EncodePng(const std::vector<std::uint8_t>& rgb, int width, int height) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<std::uint8_t> bytes(size);
  if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, rgb.data(), 0, nullptr)) {
    throw Failure(ExitCode::kInternal, std::string("cannot make the picture: ") + image.message);
  }
  bytes.resize(size);
  return bytes;
}

void TakeScreenshot(const ScreenshotOptions& options) {
  FindPictures();
  PluginHost host("Tolmara", MakeTolmara);
  BlockRunner runner(host, 2, 44100, 512);
  ApplySettings(host, options.settings);
  runner.Settle();  // the response in the display is that of the settings
  IGraphics& graphics = *static_cast<IPlugVST*>(host.Object())->GetGraphics();
  const std::vector<std::uint8_t> png =
      EncodePng(DrawAll(graphics), graphics.Width(), graphics.Height());
  WriteWholeFile(options.output, png.data(), png.size());
}

constexpr const char* kExamples =
    "No window and no display are needed.\n"
    "\n"
    "Examples:\n"
    "  tolmara screenshot editor.png\n"
    "  tolmara screenshot editor.png --preset Cathedral --set \"Time Linearity=1\"\n";

}  // namespace

void AddScreenshotCommand(CLI::App& app) {
  auto options = std::make_shared<ScreenshotOptions>();
  CLI::App* const command = app.add_subcommand("screenshot", "Draw Tolmara's editor as a PNG");
  command->add_option("OUT", options->output, "the picture to write")->required();
  AddValueOptions(*command, options->settings);
  command->footer(kExamples);
  command->callback([options] { TakeScreenshot(*options); });
}
