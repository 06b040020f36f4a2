/*
 * utf8.h - texts that come from outside, before others have to read them as UTF-8.
 *
 * Threads: any.
 */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nvrec
{

/** A character's bytes and code point; length 0 = what stands there is not well-formed. */
struct Utf8Character {
    size_t length = 0; /* bytes */
    char32_t code = 0;
};

Utf8Character utf8_character_at(std::string_view text, size_t at);

/** Whether the bytes are well-formed UTF-8. */
bool is_utf8(std::string_view text);

/** The text with U+FFFD for every byte that is no part of a character. */
std::string valid_utf8(std::string_view text);

/** UTF-16 as UTF-8; a surrogate without its partner becomes U+FFFD. */
std::string utf8_of(std::u16string_view units);

} // namespace nvrec
