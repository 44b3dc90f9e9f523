// Paths, bitmaps and text of an editor without a window.
#include "graphics/IGraphicsOffscreen.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "graphics/lice/LICE.h"

namespace {

const char kAnchor = 0;  // its address shows which binary holds this code

std::string RealPath(const char* path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path, nullptr), &std::free);
  return real ? real.get() : "";
}

// The shared object, or the program when this code is linked into one.
std::string FindModulePath() {
  Dl_info info{};
  void* extra = nullptr;
  if (!dladdr1(&kAnchor, &info, &extra, RTLD_DL_LINKMAP)) return "";
  const auto* module = static_cast<const link_map*>(extra);
  const bool isProgram = !module || !module->l_name || !*module->l_name;
  return RealPath(isProgram ? "/proc/self/exe" : module->l_name);
}

// Found at load, while a relative path still leads there.
const std::string gModulePath = FindModulePath();

std::string gResourceFolder;  // "" for the place beside the module

// With the trailing "/"; "" without one.
std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

}  // namespace

bool IGraphicsOffscreen::DrawScreen(IRECT*) { return false; }

bool IGraphicsOffscreen::DrawIText(IText* text, const char* str, IRECT* rect) {
  return DrawTextOn(GetDrawBitmap(), text, str, rect, false, &mInk);
}

void IGraphicsOffscreen::Resize(int w, int h) {
  if (w != Width() || h != Height()) IGraphics::Resize(w, h);
}

int IGraphicsOffscreen::ShowMessageBox(const char*, const char*, int) { return 0; }

IPopupMenu* IGraphicsOffscreen::CreateIPopupMenu(IPopupMenu*, IRECT*) {
  ReleaseMouseCapture();
  return nullptr;
}

void IGraphicsOffscreen::CreateTextEntry(IControl*, IText*, IRECT*, const char*, IParam*) {}

void IGraphicsOffscreen::HostPath(HeapString* path) { path->Set(gModulePath.c_str()); }

void IGraphicsOffscreen::PluginPath(HeapString* path) { path->Set(FolderOf(gModulePath).c_str()); }

void IGraphicsOffscreen::DesktopPath(HeapString* path) {
  const char* home = std::getenv("HOME");
  path->Set(home);
  path->Append("/Desktop/");
}

void IGraphicsOffscreen::PromptForFile(HeapString* file, int, HeapString*, const char*) {
  file->Set("");
}

bool IGraphicsOffscreen::OpenURL(const char*, const char*) { return false; }

void* IGraphicsOffscreen::OpenWindow(void*) { return nullptr; }

void* IGraphicsOffscreen::OpenWindowFromHandle(void*) { return nullptr; }

void IGraphicsOffscreen::SetResourceFolder(std::string folder) {
  gResourceFolder = std::move(folder);
}

std::string IGraphicsOffscreen::GetResourceFolder() {
  return gResourceFolder.empty() ? FolderOf(gModulePath) + "resources/img" : gResourceFolder;
}

LICE_IBitmap* IGraphicsOffscreen::OSLoadBitmap(int, const char* name) {
  // Only the name counts: where the files lie is the platform's business.
  const std::string path = name ? name : "";
  const std::string file = path.substr(path.rfind('/') + 1);
  const std::size_t dot = file.rfind('.');
  if (dot == std::string::npos || strcasecmp(file.c_str() + dot, ".png") != 0) return nullptr;
  return LICE_LoadPNG((GetResourceFolder() + "/" + file.substr(0, dot) + ".png").c_str());
}
