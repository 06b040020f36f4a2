/*
 * analog_inputs.h - asks the board's analog inputs for signal and motion, for the signs in the panes.
 *
 * Threads: the main one.
 */
#pragma once

#include <cstdint>

#include "wall/motion_chips.h"

namespace nvrec
{

class AnalogInputs
{
public:
    /** Begin to watch for motion. @param channels  live channels @param chips  outlive this */
    void start(MotionChips &chips, int channels);

    /** Ask the chips. */
    void look();

    bool moves(int channel) const { return bit(moving_, channel); }
    bool has_no_signal(int channel) const { return bit(lost_, channel); }

private:
    static bool bit(uint32_t mask, int channel)
    {
        return channel >= 0 && channel < 32 && (mask >> channel & 1) != 0;
    }

    MotionChips *chips_ = nullptr;
    int channels_ = 0;               /* those that a chip watches */
    uint32_t moving_ = 0, lost_ = 0; /* bit n = channel n */
};

} // namespace nvrec
