// Text between the toolkit and Cocoa.
#pragma once

#include <string>

#include "graphics/mac/CocoaPlatform.h"

// Never nil: null counts as "", and bytes that are not UTF-8 as Latin-1.
NSString* CocoaText(const char* text);

std::u32string CharactersOf(NSString* text);
