// Decoding of UTF-8.
#pragma once

// The answer for a byte that belongs to no character.
inline constexpr char32_t LICE_NO_CHARACTER = 0xFFFFFFFF;

// Takes the next character, or one byte that belongs to none, off the text from `p` to `end`, which
// must not be empty.
char32_t LICE_NextCharacter(const char*& p, const char* end);
