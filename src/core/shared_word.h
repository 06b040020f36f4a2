/*
 * shared_word.h - words that several threads share without a lock.
 *
 * The application and the library's threads read and write such words (selection state, modes,
 * flags) at any time. They are plain data because they are part of the interface; inside the
 * library every access is one whole atomic word, so that no half-written value is ever seen.
 * Nothing but the word itself is published this way, hence relaxed order.
 */
#pragma once

namespace nvrhal
{

template <typename Word> inline Word load_word(const Word &word)
{
    return __atomic_load_n(&word, __ATOMIC_RELAXED);
}

template <typename Word, typename Value> inline void store_word(Word &word, Value value)
{
    __atomic_store_n(&word, static_cast<Word>(value), __ATOMIC_RELAXED);
}

} // namespace nvrhal
