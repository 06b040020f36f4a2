/*
 * motion_chips.h - motion as the chips of the board's analog inputs see it: channel n is input n % 4 of
 * chip n / 4. Starting the chips clears the areas that they watch, so they are started once, and all parts of
 * the recorder that need motion share one object of this class.
 *
 * Threads: the main one.
 */
#pragma once

#include <cstdint>
#include <optional>

namespace nvrec
{

class MotionChips
{
public:
    /** Watch the whole picture of a channel. @return false = no chip does that here */
    bool watch(int channel);

    /** Blocks that move in a channel's picture; nothing = its chip does not say. */
    std::optional<uint32_t> moving_blocks(int channel) const;

private:
    std::optional<bool> started_; /* nothing = watch() was not called yet */
};

} // namespace nvrec
