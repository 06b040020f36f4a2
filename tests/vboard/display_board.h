/* display_board.h - the board of the display's tests, with a stream in a window. */
#pragma once

#include "board_rig.h"

namespace rig
{

class Display : public Board
{
protected:
    // Channel and port 0 in a window; shows `name`.
    Stream show(const char *name, int x, int y, int w, int h)
    {
        Stream stream = load_stream(name);
        start_channel(0, stream.codec);
        open_window(0, x, y, w, h);
        EXPECT_EQ(bind(0, 0), MI_SUCCESS);
        return stream;
    }
};

} // namespace rig
