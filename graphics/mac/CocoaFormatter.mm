// Checks of what is typed.
#include "graphics/mac/CocoaFormatter.h"

#include "graphics/mac/CocoaText.h"

@implementation CocoaFormatter

- (id)initWithFilter:(const LineFilter&)filter text:(NSString*)text {
  self = [super init];
  if (!self) return nil;
  mFilter = new LineFilter(filter);
  mLastValid = [text copy];
  return self;
}

- (void)dealloc {
  delete mFilter;
  [mLastValid release];
  [super dealloc];
}

- (BOOL)isPartialStringValid:(NSString*)partialString
            newEditingString:(NSString**)newString
            errorDescription:(NSString**)error {
  if (!mFilter->Accepts(CharactersOf(partialString))) {
    if (newString) *newString = CocoaPlatform::TextInsteadOfRejected(mLastValid);
    return NO;
  }
  [mLastValid autorelease];
  mLastValid = [partialString copy];
  return YES;
}

- (NSString*)stringForObjectValue:(id)object {
  return [object isKindOfClass:[NSString class]] ? object : @"";
}

- (BOOL)getObjectValue:(id*)object forString:(NSString*)string errorDescription:(NSString**)error {
  if (object) *object = string;
  return YES;
}

@end
