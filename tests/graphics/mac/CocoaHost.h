// A host with a Cocoa window, a small editor in it, and means to stand in for the user.
#pragma once

#include <gtest/gtest.h>
#import <objc/runtime.h>

#include "graphics/mac/IGraphicsCocoa.h"
#include "graphics/mac/IGraphicsMac.h"
#include "tests/graphics/Fixture.h"

// A method of a class, or of its class object, replaced for a scope.
class Replaced {
 public:
  template <class Function>
  Replaced(Class owner, SEL selector, Function* with)
      : mMethod(class_getInstanceMethod(owner, selector)),
        mBefore(method_setImplementation(mMethod,
                                         reinterpret_cast<IMP>(reinterpret_cast<void*>(with)))) {}
  ~Replaced() { method_setImplementation(mMethod, mBefore); }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;

 private:
  Method mMethod;
  IMP mBefore;
};

// The host's view; counts the keys that nobody took.
@interface HostView : NSView {
 @public
  int mKeys;
}
@end

// Notes its mouse events with their modifiers, as "down 3 4 LS".
class LogControl : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;
  bool Draw(IGraphics*) override { return true; }
  void OnMouseDown(int x, int y, IMouseMod* mod) override {
    Log("down", x, y, mod);
    if (onPress) onPress();
  }
  void OnMouseUp(int x, int y, IMouseMod* mod) override { Log("up", x, y, mod); }
  void OnMouseOver(int x, int y, IMouseMod* mod) override { Log("over", x, y, mod); }
  void TextFromTextEntry(const char* text) override { log += std::string("text ") + text; }
  std::string TakeLog() { return std::exchange(log, ""); }

  std::function<void()> onPress;

 private:
  void Log(const char* what, int x, int y, const IMouseMod* mod) {
    log += std::string(what) + " " + std::to_string(x) + " " + std::to_string(y) + " " +
           (mod->L ? "L" : "") + (mod->R ? "R" : "") + (mod->S ? "S" : "") + (mod->C ? "C" : "") +
           (mod->A ? "A" : "") + ";";
  }
  std::string log;
};

class CocoaTest : public ::testing::Test {
 protected:
  static constexpr int kWidth = 200, kHeight = 100;
  static constexpr int kLeft = 10, kBottom = 20;  // of the host's view in its window

  CocoaTest();
  ~CocoaTest() override;

  template <class T, class... Args>
  T* Attach(Args&&... args) {
    auto* control = new T(&plug, std::forward<Args>(args)...);
    graphics->AttachControl(control);
    return control;
  }
  IGraphicsCocoa* Open();
  IGraphicsCocoa* View() const { return (IGraphicsCocoa*)graphics->GetWindow(); }
  NSTextField* OpenField(IControl* control, const char* str, int param = -1);
  void TypeInto(NSString* text);  // the open field, replacing its text
  void EndField() { [[[[View() subviews] lastObject] currentEditor] insertNewline:nil]; }
  void RunFor(double seconds, NSString* mode = NSDefaultRunLoopMode);

  // At a place as controls get it.
  NSEvent* Mouse(NSEventType type, int x, int y, NSUInteger flags = 0, int clicks = 1,
                 CGFloat deltaY = 0) const;

  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  EditedPlug plug;
  IGraphicsMac* graphics = new IGraphicsMac(&plug, kWidth, kHeight, 0);  // owned by the plug-in
  NSWindow* window = MakeWindow(NSMakeRect(300, 200, 260, 150));
  HostView* host = [[HostView alloc] initWithFrame:NSMakeRect(kLeft, kBottom, 240, 120)];
  IText style;
  IRECT fieldRect{20, 30, 70, 46};

  static NSWindow* MakeWindow(NSRect place);
};
