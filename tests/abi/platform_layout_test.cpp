/*
 * The records of the seams and the codes of their calls. Sizes and offsets are asserted by
 * seam_layouts.h while this file and its neighbour in C are compiled.
 */
#include <gtest/gtest.h>

#include "seam_layouts.h"

namespace
{

TEST(AbiPlatform, ResultCodesNameModuleAndReason)
{
    EXPECT_EQ(static_cast<uint32_t>(MI_ERROR(MI_MODULE_VDEC, MI_REASON_BAD_VALUE)), 0xA0080003u);
    EXPECT_EQ(MI_MODULE_VDEC, 8);
    EXPECT_EQ(MI_MODULE_DISP, 15);
}

} // namespace
