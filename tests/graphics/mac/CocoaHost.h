// A host with a Cocoa window, a small editor in it, and means to stand in for the user.
#pragma once

#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <functional>
#include <string>

#include "graphics/mac/IGraphicsCocoa.h"
#include "graphics/mac/IGraphicsMac.h"
#include "tests/graphics/Fixture.h"

// A method of a class, or with `ofClass` of the class object, replaced for a scope.
class Replaced {
 public:
  template <class Function>
  Replaced(Class owner, SEL selector, Function* with, bool ofClass = false)
      : Replaced(owner, selector, reinterpret_cast<void*>(with), ofClass) {}
  Replaced(Class owner, SEL selector, void* with, bool ofClass);
  ~Replaced();
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;

 private:
  Class mOwner;
  SEL mSelector;
  IMP mBefore;
};

// The host's view: counts the keys that nobody took.
@interface HostView : NSView {
  int mKeys;
}
- (int)takeKeys;
@end

// Notes its mouse events with their modifiers, as "down 3 4 LS".
class LogControl : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;
  bool Draw(IGraphics*) override { return true; }
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  void OnMouseUp(int x, int y, IMouseMod* mod) override { Log("up", x, y, mod); }
  void OnMouseOver(int x, int y, IMouseMod* mod) override { Log("over", x, y, mod); }
  void TextFromTextEntry(const char* text) override { log += std::string("text ") + text + ";"; }
  std::string TakeLog() { return std::exchange(log, ""); }

  std::function<void()> onPress;

 private:
  void Log(const char* what, int x, int y, const IMouseMod* mod);

  std::string log;
};

void RunFor(double seconds, NSString* mode = NSDefaultRunLoopMode);

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
  NSTextField* Field() const { return [[View() subviews] lastObject]; }
  void TypeInto(NSString* text);  // the open field, replacing its text
  void EndField();                // as the return key does

  // At a place as controls get it.
  NSEvent* Mouse(NSEventType type, int x, int y, NSUInteger flags = 0, int clicks = 1) const;
  NSEvent* Wheel(int x, int y, CGFloat distance) const;
  static NSEvent* Key(NSString* characters, unsigned short code = 0);

  NSAutoreleasePool* pool;
  TestPlug plug;
  IGraphicsMac* graphics;  // owned by the plug-in
  NSWindow* window;
  HostView* host;
};
