/*
 * font_pointers.cpp - the exported tables of simplified and traditional characters, filled while the
 * library is loaded.
 *
 * Written out in the source, 7510 pointers would be as many relocation records, three times as large as
 * the tables themselves. Their places are known: text i stands four bytes behind text i - 1.
 * docs/decisions/0010-text-tables-at-load.md has the figures.
 *
 * Thread: the one that loads the library, before any constructor of the application. From then on the
 * tables are the application's to read and set.
 */
#include "nvrhal.h"
#include "text/font_texts.h"

using namespace nvrhal;

const char *JTFontlib[kFontEntries];
const char *FTFontlib[kFontEntries];

namespace
{

// Before the constructors of a program that has the library linked in as objects, too.
constexpr int kFirstOfAll = 101; // smaller numbers are the compiler's own

__attribute__((constructor(kFirstOfAll))) void point_to_texts()
{
    for (size_t i = 0; i < kFontEntries; ++i) {
        JTFontlib[i] = kSimplifiedTexts[i];
        FTFontlib[i] = kTraditionalTexts[i];
    }
}

} // namespace
