/*
 * glyphs.h - texts on their way to the screen: UTF-8 as users type it, or GB2312 as older recorders
 * keep it, to the 16-bit units that a font is asked for. The library's text functions know GB2312 and
 * the two Chinese scripts; every other character of Unicode goes through as it is.
 */
#pragma once

#include <string>

namespace nvrec
{

enum class ChineseScript { kAsTyped, kTraditional };

/** Whether the bytes are well-formed UTF-8. */
bool is_utf8(const std::string &text);

/**
 * The text in UTF-16, control characters as blanks. Bytes that are not UTF-8 are taken for
 * GB2312. @return empty when they are neither.
 */
std::u16string units_of(const std::string &text, ChineseScript script);

} // namespace nvrec
