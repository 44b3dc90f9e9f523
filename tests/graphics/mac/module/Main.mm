// The start of a test program with windows.
#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  const int result = RUN_ALL_TESTS();
  [pool drain];
  return result;
}
