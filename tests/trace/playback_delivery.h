/* playback_delivery.h - delivers a buffer of playback. For trace tests. */
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

#include "nvrhal.h"

namespace view_test
{

/** Deliver a record and check that its buffer is free again. */
inline int32_t deliver(FrameInfo &rec)
{
    int32_t result = ext_playback_set_buf(&rec);
    EXPECT_EQ(rec.data, nullptr);
    return result;
}

} // namespace view_test
