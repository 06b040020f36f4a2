/*
 * font_swap.cpp - simplified and traditional characters in UTF-8 text, by two parallel tables.
 *
 * A character is looked for from the first entry of one table to its "END" and replaced by the
 * entry of the other table at the same index; the first match wins, what is not found is copied.
 *
 * The tables are pointers, and the application may set them. Entries that still point to the
 * library's own texts need not be followed one by one: those texts stand side by side, four bytes
 * each, and are compared a block at a time. Whether a block of pointers is untouched is found out
 * once a conversion, when the scan first comes there. A block with an entry set by the
 * application is compared entry by entry.
 *
 * Threads: any, as long as nobody sets entries meanwhile.
 */
#include "nvrhal.h"
#include "text/font_texts.h"
#include "text/utf8.h"
#include "text/word_scan.h"

#include <cstring>

namespace nvrhal
{
namespace
{

constexpr size_t kOwnTextBytes = 3;
constexpr size_t kNotFound = kFontEntries;

inline uintptr_t differences(const char *const *entries, FontText *texts, size_t count)
{
    const auto own = reinterpret_cast<uintptr_t>(texts);
    uintptr_t found = 0;
    for (size_t i = 0; i < count; ++i)
        found |= reinterpret_cast<uintptr_t>(entries[i]) ^ (own + i * sizeof(FontText));
    return found;
}

/** Whether `count` entries still point to the library's own texts. */
bool points_to_own(const char *const *entries, FontText *texts, size_t count)
{
    // A whole block has a constant count, of which the compiler makes vectors.
    if (count == kScanBlock) return differences(entries, texts, kScanBlock) == 0;
    return differences(entries, texts, count) == 0;
}

/** One conversion's look at the table that is searched. */
class FontScan
{
public:
    FontScan(const char *const *entries, FontText *texts) : entries_(entries), texts_(texts) {}

    /** Index of the first entry that begins with the character, or kNotFound. */
    size_t find(const char *character, size_t bytes)
    {
        for (size_t first = 0; first < kFontEntries; first += kScanBlock) {
            const size_t left = kFontEntries - first;
            const size_t count = left < kScanBlock ? left : kScanBlock;
            const bool own = is_own(first, count);
            // The own texts are characters of three bytes, so their lead bytes announce three.
            if (own && bytes != kOwnTextBytes) continue;
            const size_t found =
                own ? find_in_own(first, count, character) : find_in_set(first, count, character, bytes);
            if (found == kEnd) return kNotFound;
            if (found < count) return first + found;
        }
        return kNotFound;
    }

private:
    static constexpr size_t kEnd = SIZE_MAX;
    static constexpr size_t kBlocks = (kFontEntries + kScanBlock - 1) / kScanBlock;
    static_assert(kBlocks <= 64, "one bit a block");

    bool is_own(size_t first, size_t count)
    {
        const uint64_t bit = uint64_t{1} << first / kScanBlock;
        if ((looked_at_ & bit) == 0) {
            looked_at_ |= bit;
            if (points_to_own(entries_ + first, texts_ + first, count)) own_ |= bit;
        }
        return (own_ & bit) != 0;
    }

    size_t find_in_own(size_t first, size_t count, const char *character) const
    {
        const char text[kWordBytes] = {character[0], character[1], character[2], '\0'};
        const uint32_t word = word_at(text, 0);
        return scan_words(texts_ + first, count, word, UINT32_MAX, word);
    }

    /** kEnd when the "END" entry comes first. Entries set to null match nothing. */
    size_t find_in_set(size_t first, size_t count, const char *character, size_t bytes) const
    {
        for (size_t i = 0; i < count; ++i) {
            const char *entry = entries_[first + i];
            if (!entry) continue;
            if (std::strcmp(entry, "END") == 0) return kEnd;
            if (std::strncmp(entry, character, bytes) == 0) return i;
        }
        return count;
    }

    const char *const *entries_;
    FontText *texts_;
    uint64_t looked_at_ = 0; // a bit a block of entries: is_own has been found out
    uint64_t own_ = 0;       // a bit a block: all its entries point to own texts
};

/** Copies the character that `from` begins with. @return its bytes, none for an ASCII lead byte. */
size_t copy_character(const char *from, char *to)
{
    const int announced = leading_ones(static_cast<uint8_t>(*from));
    if (announced == 0) return 0;
    const auto bytes = static_cast<size_t>(utf8_character_bytes(from, announced));
    std::memmove(to, from, bytes);
    return bytes;
}

int swap_characters(const char *in, char *out, FontScan searched, const char *const *replacements)
{
    while (*in != '\0') {
        const auto lead = static_cast<uint8_t>(*in);
        if (lead < 0x80) {
            *out++ = *in++;
            continue;
        }
        const int announced = leading_ones(lead);
        const int present = utf8_character_bytes(in, announced);
        // What the end of the text cuts off is no character: copied as it is.
        const size_t index =
            present == announced ? searched.find(in, static_cast<size_t>(present)) : kNotFound;
        const bool replaced = index != kNotFound && replacements[index];
        out += copy_character(replaced ? replacements[index] : in, out);
        in += present;
    }
    return 0;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

extern "C" int TraditionalToSimplifiedUTF8(const char *in, char *out)
{
    if (!in || !out) return -1;
    return swap_characters(in, out, FontScan(FTFontlib, kTraditionalTexts), JTFontlib);
}

extern "C" int SimplifiedToTraditionalUTF8(const char *in, char *out)
{
    if (!in || !out) return -1;
    return swap_characters(in, out, FontScan(JTFontlib, kSimplifiedTexts), FTFontlib);
}
