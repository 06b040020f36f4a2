/* audio_words.h - audio_ctrl as its thirteen words, and the entry trace, for the tests of the audio output.
 */
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

namespace audio_test
{

constexpr int32_t kRefused = static_cast<int32_t>(0xA0050007); // as a real output refuses
constexpr uint32_t kPattern = 0xA5A5A5A5;                      // what no operation writes

using Words = std::array<uint32_t, 13>;

inline Words audio_words()
{
    Words words;
    static_assert(sizeof words == sizeof audio_ctrl);
    std::memcpy(words.data(), &audio_ctrl, sizeof words);
    return words;
}

/** Fill audio_ctrl so that every word that is not written shows. */
inline void fill_audio_words(uint32_t value = kPattern)
{
    Words words;
    words.fill(value);
    std::memcpy(&audio_ctrl, words.data(), sizeof words);
}

/** All words of the pattern but the first five, which a change of use writes. */
inline Words words_in_use(uint32_t mode)
{
    Words words;
    words.fill(kPattern);
    words[0] = mode;
    words[1] = words[2] = words[4] = 0;
    words[3] = 1;
    return words;
}

/** The entry trace of `function`, '#' for the line. */
inline std::string entry_of(const std::string &function)
{
    return "EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEaudio.c," + function + ",#";
}

inline std::string audio_calls()
{
    return recording::platform.calls({"MI_AO_"});
}

} // namespace audio_test
