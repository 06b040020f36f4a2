/*
 * shared_memory.h - every access of the pools to memory that another thread may be using.
 *
 * Which field is accessed by which of them, and what the labels mean, is told by the table in
 * pool.cpp. A checker that wants to see each access replaces this header.
 */
#pragma once

#include "core/shared_word.h"

#include <cstdint>
#include <cstring>

namespace nvrhal
{

/** A word of an entry or a wrap mark; relaxed, since cur_index carries it. */
template <typename Word> inline Word load_shared(const Word &word)
{
    return load_word(word);
}

template <typename Word, typename Value> inline void store_shared(Word &word, Value value)
{
    store_word(word, value);
}

/** cur_index as a reader looks at it: A1, pairs with P1 and F1. */
inline int32_t load_published(const int32_t &cur_index)
{
    return __atomic_load_n(&cur_index, __ATOMIC_ACQUIRE);
}

/** cur_index as the writer publishes it: P1, pairs with A1. */
inline void publish(int32_t &cur_index, uint32_t index)
{
    __atomic_store_n(&cur_index, static_cast<int32_t>(index), __ATOMIC_RELEASE);
}

/** Ahead of a frame's first store: F1, pairs with A1. */
inline void begin_overwriting()
{
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wtsan" // the thread sanitizer overlooks it; P1 and A1 suffice to it
#endif
    __atomic_thread_fence(__ATOMIC_RELEASE);
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
}

/** Frame bytes into the data ring; plain, since the distance keeps readers away from them. */
inline void copy_shared(uint8_t *to, const void *from, uint32_t bytes)
{
    std::memcpy(to, from, bytes);
}

} // namespace nvrhal
