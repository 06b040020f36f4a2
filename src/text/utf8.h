/*
 * utf8.h - how far a UTF-8 character reaches.
 */
#pragma once

namespace nvrhal
{

/** Bytes of the character that are there: `bytes`, or fewer when the text ends before; at least 1. */
int utf8_character_bytes(const char *character, int bytes);

} // namespace nvrhal
