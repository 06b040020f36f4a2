/*
 * glyphs.h - converts texts for the screen to the UTF-16 units that a font is asked for. They come as UTF-8,
 * as users type it, or as GB2312, as older recorders keep it. The library's text functions convert GB2312 and
 * the two Chinese scripts; all other characters of Unicode stay as they are.
 */
#pragma once

#include <string>

namespace nvrec
{

enum class ChineseScript { kAsTyped, kTraditional };

/**
 * The text in UTF-16, control characters as blanks. Bytes that are not UTF-8 are taken for
 * GB2312. @return empty when they are neither.
 */
std::u16string units_of(const std::string &text, ChineseScript script);

} // namespace nvrec
