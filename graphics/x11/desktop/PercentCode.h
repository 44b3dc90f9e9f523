// Bytes written as "%41", in addresses of files and of the bus.
#pragma once

#include <string>
#include <string_view>

// A percent sign without two digits behind it stays.
std::string FromPercentCode(std::string_view text);
