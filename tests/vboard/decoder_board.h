/* decoder_board.h - the board of the decoder channels' tests, and a wall that shows one of them. */
#pragma once

#include "board_rig.h"

namespace rig
{

class Decoder : public Board
{
};

// A wall of one pane that shows decoder channel 0.
inline void show_channel_0(uint32_t codec, uint32_t mode = MI_VDEC_MODE_FRAME, int w = 640, int h = 360)
{
    power_up();
    start_channel(0, codec, mode);
    open_window(0, 0, 0, w, h);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
}

} // namespace rig
