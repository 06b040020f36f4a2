/* Operations that take anything, called from C and from C++. */
#include <gtest/gtest.h>

#include "calls_from_c.h"
#include "nvrhal.h"

namespace
{

TEST(AbiCall, OperationsThatTakeAnythingTakeItFromC)
{
    EXPECT_EQ(results_of_calls_from_c(), 2);
}

TEST(AbiCall, OperationsThatTakeAnythingTakeItFromCxx)
{
    const int number = 7;
    translateKey("text", 1.5, &number);
    hi_localkey_proc(number);
    audio_start_hdmi(number, "text");
    EXPECT_EQ(ext_led_set(number, 2.5, "text"), 1);
    EXPECT_EQ(vo_mem_config(&number), 0);
    EXPECT_EQ(vo_mem_config(), 0);
}

} // namespace
