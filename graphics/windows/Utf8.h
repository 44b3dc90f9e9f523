// Text as bytes and as characters.
#pragma once

#include <string>
#include <string_view>

// What is not UTF-8 is left out.
std::u32string FromUtf8(std::string_view bytes);
std::string ToUtf8(std::u32string_view text);
