/*
 * word_scan.h - the first 4-byte word of a table that carries a key: the linear scan of the
 * character tables.
 *
 * The application may reorder the tables, so neither an order nor an index can be relied on: every
 * look-up reads words from the first one on. It is fast because it compares many words at once.
 * Blocks of 64 words are compared as vectors of 16 bytes, all hits of a block are gathered without a
 * branch, and only a block with a hit is searched word by word; so the first match wins. Where the
 * compiler has no vectors for the machine, every word is compared by itself.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace nvrhal
{

constexpr size_t kWordBytes = 4;
constexpr size_t kScanBlock = 64; // words

inline uint32_t word_at(const void *words, size_t index)
{
    uint32_t word;
    std::memcpy(&word, static_cast<const char *>(words) + index * kWordBytes, sizeof word);
    return word;
}

#if defined(__SSE2__) || defined(__ARM_NEON)

/** Whether some Lane of the block's words equals `key`, in the lanes that `mask` selects. */
template <typename Lane> inline bool block_has(const void *block, Lane key, uint32_t mask)
{
    constexpr size_t kVectorBytes = 16;
    typedef Lane Lanes __attribute__((vector_size(kVectorBytes)));
    typedef Lane TableLanes __attribute__((vector_size(kVectorBytes), aligned(1), may_alias));
    typedef uint64_t Halves __attribute__((vector_size(kVectorBytes)));

    const TableLanes *table = static_cast<const TableLanes *>(block);
    const Lanes keys = Lanes{} + key;
    Lanes hits = {};
#pragma GCC unroll 16
    for (size_t i = 0; i < kScanBlock * kWordBytes / kVectorBytes; ++i)
        hits |= (Lanes)(table[i] == keys);

    const Halves halves = (Halves)hits;
    const uint64_t mask_64 = uint64_t{mask} << 32 | mask;
    return ((halves[0] | halves[1]) & mask_64) != 0;
}

#else

template <typename Lane> inline bool block_has(const void *, Lane, uint32_t)
{
    return true; // look word by word
}

#endif

/**
 * Index of the first of `count` words with (word & mask) == want, or `count`.
 * `key` is what `want` holds in the one Lane of a word that `mask` selects.
 */
template <typename Lane>
inline size_t scan_words(const void *words, size_t count, Lane key, uint32_t mask, uint32_t want)
{
    const char *bytes = static_cast<const char *>(words);
    size_t index = 0;
    while (count - index >= kScanBlock && !block_has(bytes + index * kWordBytes, key, mask))
        index += kScanBlock;
    while (index < count && (word_at(words, index) & mask) != want)
        ++index;
    return index;
}

} // namespace nvrhal
