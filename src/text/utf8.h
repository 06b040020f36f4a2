/*
 * utf8.h - how far a UTF-8 character reaches.
 */
#pragma once

#include <cstdint>

namespace nvrhal
{

/** The number of leading one bits of a lead byte, 0 to 8: the bytes of its character. */
inline int leading_ones(uint8_t lead)
{
    return __builtin_clz(~(static_cast<uint32_t>(lead) << 24));
}

/** Bytes of the character that are there: `bytes`, or fewer when the text ends before; at least 1. */
inline int utf8_character_bytes(const char *character, int bytes)
{
    int found = 1;
    while (found < bytes && character[found] != '\0')
        ++found;
    return found;
}

} // namespace nvrhal
