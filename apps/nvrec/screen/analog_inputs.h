/*
 * analog_inputs.h - signal and motion of the board's analog inputs: channel n is input n % 4 of
 * decoder chip n / 4. The chips watch the whole picture.
 *
 * Threads: the main one.
 */
#pragma once

#include <cstdint>

namespace nvrec
{

class AnalogInputs
{
public:
    /** Begin to watch for motion. @param channels  live channels */
    void start(int channels);

    /** Ask the chips. */
    void look();

    bool moves(int channel) const { return bit(moving_, channel); }
    bool has_no_signal(int channel) const { return bit(lost_, channel); }

private:
    static bool bit(uint32_t mask, int channel)
    {
        return channel >= 0 && channel < 32 && (mask >> channel & 1) != 0;
    }

    int channels_ = 0;
    bool watches_motion_ = false;
    uint32_t moving_ = 0, lost_ = 0; /* bit n = channel n */
};

} // namespace nvrec
