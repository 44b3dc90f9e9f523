// Questions to the user beyond the controls, and pages opened elsewhere.
#include <cstdlib>
#include <cstring>

#include "graphics/mac/CocoaText.h"
#include "graphics/mac/IGraphicsCocoa.h"
#include "graphics/mac/IGraphicsMac.h"
#include "graphics/windows/FilePrompt.h"
#include "graphics/windows/LockPause.h"
#include "graphics/windows/MessageBoxes.h"

namespace {

// Nil where any type will do.
NSArray* FileTypes(const char* extensions) {
  NSMutableArray* const types = [NSMutableArray array];
  for (const std::string& word : Words(extensions)) [types addObject:CocoaText(word.c_str())];
  return [types count] ? types : nil;
}

NSSavePanel* MakePanel(int action, NSString* name) {
  if (action == IGraphics::kFileSave) {
    NSSavePanel* const panel = [NSSavePanel savePanel];
    [panel setAllowsOtherFileTypes:NO];
    [panel setNameFieldStringValue:name];
    return panel;
  }
  NSOpenPanel* const panel = [NSOpenPanel openPanel];
  [panel setCanChooseFiles:YES];
  [panel setCanChooseDirectories:NO];
  [panel setResolvesAliases:YES];
  return panel;
}

}  // namespace

int IGraphicsMac::ShowMessageBox(const char* text, const char* caption, int type) {
  const BoxType& box = BoxTypeOf(type);
  NSMutableArray* const titles = [NSMutableArray array];
  for (const BoxButton& button : box.buttons) {
    if (button.text) [titles addObject:CocoaText(button.text)];
  }
  [mGraphicsCocoa loseRelease];
  const LockPause pause(GetPlug());
  const NSInteger chosen = CocoaPlatform::RunAlert(CocoaText(caption), CocoaText(text), titles);
  return chosen < 0 ? box.dismissed : box.buttons[chosen].result;
}

IPopupMenu* IGraphicsMac::CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) {
  ReleaseMouseCapture();
  if (!mGraphicsCocoa || !menu || !rect) return nullptr;
  const LockPause pause(GetPlug());
  return [mGraphicsCocoa createIPopupMenu:menu:(*rect)];
}

void IGraphicsMac::CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                                   IParam* param) {
  if (text && rect) [mGraphicsCocoa createTextEntry:control:(param):(*text):(str):(*rect)];
}

void IGraphicsMac::DesktopPath(HeapString* path) {
  path->Set(std::getenv("HOME"));
  path->Append("/Desktop/");
}

void IGraphicsMac::PromptForFile(HeapString* file, int action, HeapString* dir,
                                 const char* extensions) {
  if (!file) return;
  NSString* const name = CocoaText(file->Get());
  file->Set("");
  if (!WindowIsOpen()) return;
  NSSavePanel* const panel = MakePanel(action, name);
  [panel setDirectoryURL:[NSURL fileURLWithPath:CocoaText(StartFolder(dir).c_str())]];
  [panel setAllowedFileTypes:FileTypes(extensions)];
  [mGraphicsCocoa loseRelease];
  const LockPause pause(GetPlug());
  if ([panel runModal] != NSModalResponseOK) return;
  const char* const path = [[[panel URL] path] UTF8String];
  if (path) SetChosenFile(path, file, dir);
}

bool IGraphicsMac::OpenURL(const char* url, const char* errMsg) {
  if (!url || !*url) return true;
  NSString* const text = CocoaText(url);
  NSURL* const address =
      std::strstr(url, "http") ? [NSURL URLWithString:text] : [NSURL fileURLWithPath:text];
  // kept: what can be no address counts as opened, as there is nothing to try again.
  const bool opened = !address || [[NSWorkspace sharedWorkspace] openURL:address];
  mFailure.Note(opened, errMsg);
  return opened;
}
