/* control_board.h - the board of the control face's tests, with a stream to show and files of its own. */
#pragma once

#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "board_rig.h"

namespace rig
{

class Control : public Board
{
protected:
    Stream show(const char *name, int w = 640, int h = 360)
    {
        Stream stream = load_stream(name);
        power_up();
        start_channel(0, stream.codec);
        open_window(0, 0, 0, w, h);
        EXPECT_EQ(bind(0, 0), MI_SUCCESS);
        return stream;
    }

    static std::string scratch(const char *name)
    {
        return testing::TempDir() + "vboard_" + std::to_string(getpid()) + "_" + name;
    }
};

} // namespace rig
