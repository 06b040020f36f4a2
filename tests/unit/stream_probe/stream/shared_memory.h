/* shared_memory.h - the probe's stand-in: the same accesses, each reported (see stream_interleaving_probe.h).
 */
#pragma once

#include <cstddef>
#include <cstdint>

namespace stream_probe
{
void before_load(const void *address, size_t size);
void after_store();
void frame_begins();
} // namespace stream_probe

namespace nvrhal
{

template <typename Word> inline Word load_shared(const Word &word)
{
    stream_probe::before_load(&word, sizeof word);
    return word;
}

template <typename Word, typename Value> inline void store_shared(Word &word, Value value)
{
    word = static_cast<Word>(value);
    stream_probe::after_store();
}

inline int32_t load_published(const int32_t &cur_index)
{
    return load_shared(cur_index);
}

inline void publish(int32_t &cur_index, uint32_t index)
{
    store_shared(cur_index, index);
}

inline void begin_overwriting()
{
    stream_probe::frame_begins();
}

inline void copy_shared(uint8_t *to, const void *from, uint32_t bytes)
{
    for (uint32_t i = 0; i < bytes; ++i)
        store_shared(to[i], static_cast<const uint8_t *>(from)[i]);
}

} // namespace nvrhal
