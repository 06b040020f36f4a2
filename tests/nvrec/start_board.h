/* start_board.h - the library and its board, up with four cameras. For tests of single modules. */
#pragma once

#include <gtest/gtest.h>

#include "nvrhal.h"

inline void start_board()
{
    DeviceParams params = {};
    params.vi_chn_num = 4;
    params.gui_width = 1920;
    params.gui_height = 1080;
    ASSERT_EQ(ext_device_init(&params), 0);
}
