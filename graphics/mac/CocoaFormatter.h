// The filter of the text field in which a value is typed.
#pragma once

#include "graphics/mac/ClassNames.h"
#include "graphics/mac/CocoaPlatform.h"
#include "graphics/windows/TypedText.h"

// Takes only texts that its filter accepts, at every keystroke; passes them on as they are.
@interface CocoaFormatter : NSFormatter {
  LineFilter* mFilter;   // owned
  NSString* mLastValid;  // what the field shows
}
- (id)initWithFilter:(const LineFilter&)filter text:(NSString*)text;
@end
