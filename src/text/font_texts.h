/*
 * font_texts.h - the characters that JTFontlib and FTFontlib point to as long as the application
 * leaves them alone: three UTF-8 bytes and a zero each, "END" last.
 */
#pragma once

#include <cstddef>

namespace nvrhal
{

constexpr size_t kFontEntries = 3755;

typedef const char FontText[4];

extern FontText kSimplifiedTexts[kFontEntries];
extern FontText kTraditionalTexts[kFontEntries];

} // namespace nvrhal
