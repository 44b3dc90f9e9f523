// Conversions of text.
#include "graphics/mac/CocoaText.h"

#include <cstring>

#include "graphics/windows/Utf8.h"

NSString* CocoaText(const char* text) {
  if (!text) return @"";
  const NSUInteger length = std::strlen(text);
  NSString* string = [[NSString alloc] initWithBytes:text
                                              length:length
                                            encoding:NSUTF8StringEncoding];
  if (!string) {
    string = [[NSString alloc] initWithBytes:text length:length encoding:NSISOLatin1StringEncoding];
  }
  return [string autorelease];
}

std::u32string CharactersOf(NSString* text) {
  const char* const bytes = [text UTF8String];
  return FromUtf8(bytes ? bytes : "");
}
