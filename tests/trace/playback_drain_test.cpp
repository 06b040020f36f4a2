/* ext_signal_spilt_start and _exit: one channel drained and flushed, the same both ways. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kDrainRefused = static_cast<int32_t>(0xA0080005);

struct Switch {
    const char *name;
    int32_t (*call)(uint32_t);

    friend void PrintTo(const Switch &way, std::ostream *out) { *out << way.name; }
};

class SingleSwitch : public testing::TestWithParam<Switch>
{
};

INSTANTIATE_TEST_SUITE_P(BothWays, SingleSwitch,
                         testing::Values(Switch{"start", ext_signal_spilt_start},
                                         Switch{"exit", ext_signal_spilt_exit}));

const char kFlush[] = R"(
    MI_VDEC_GetOutputPortAttr 2
    MI_VDEC_StopChn 2
    MI_SYS_UnBindChnPort {vdec,0,2,0} {disp,0,2,0}
    MI_VDEC_GetChnAttr 2
    MI_VDEC_DestroyChn 2
    MI_VDEC_CreateChn 2 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
    MI_VDEC_SetOutputPortAttr 2 {0x0}
    MI_SYS_BindChnPort {vdec,0,2,0} {disp,0,2,0} 15 15
    MI_VDEC_StartChn 2
)";

/** Statistics with that many bytes left, from the n-th question on. */
void leave_bytes(unsigned from, uint32_t bytes)
{
    platform.script("MI_VDEC_GetChnStat").from(from).fills([bytes](recording::Args &call) {
        call.record<MI_VDEC_ChnStat>(1).left_stream_bytes = bytes;
    });
}

TEST_P(SingleSwitch, ClearsTwiceAndFlushesAnEmptyDecoder)
{
    create_decoders(4);
    globalVoDev = 2;
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_EQ(platform.calls(), trace(std::string(R"(
        MI_DISP_ClearInputPortBuffer 2 2 1
        MI_VDEC_GetChnStat 2
        MI_DISP_ClearInputPortBuffer 2 2 1
    )") + kFlush));
}

TEST_P(SingleSwitch, WaitsUntilTheDecoderHasConsumedItsStream)
{
    create_decoders(4);
    leave_bytes(1, 500);
    leave_bytes(4, 0);
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_EQ(platform.calls({"MI_DISP_", "MI_VDEC_GetChnStat", "board_"}), trace(R"(
        MI_DISP_ClearInputPortBuffer 0 2 1
        MI_VDEC_GetChnStat 2
        board_sleep_us 10000
        MI_DISP_ClearInputPortBuffer 0 2 1
        MI_VDEC_GetChnStat 2
        board_sleep_us 10000
        MI_DISP_ClearInputPortBuffer 0 2 1
        MI_VDEC_GetChnStat 2
        board_sleep_us 10000
        MI_DISP_ClearInputPortBuffer 0 2 1
        MI_VDEC_GetChnStat 2
        MI_DISP_ClearInputPortBuffer 0 2 1
    )"));
}

TEST_P(SingleSwitch, GivesUpWaitingAfterTenAttempts)
{
    create_decoders(4);
    leave_bytes(1, 1);
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat 2"), 10u);
    EXPECT_EQ(platform.count("board_sleep_us 10000"), 10u);
    EXPECT_EQ(platform.time_us(), 100000);
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer"), 11u);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn 2"), 1u);
}

TEST_P(SingleSwitch, UsesAnAttemptUpForStatisticsThatCannotBeRead)
{
    create_decoders(4);
    platform.script("MI_VDEC_GetChnStat").returns(kDrainRefused);
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat 2"), 10u);
    EXPECT_EQ(platform.count("board_sleep_us"), 0u);
    EXPECT_EQ(recording::times_printed("[vdec_venc.c-#] MI_VDEC_GetChnStat errno is 0xa0080005"), 10u);
}

/* Any code but 0: an empty decoder cannot be concluded from it. */
TEST_P(SingleSwitch, TakesPositiveCodesForStatisticsThatCannotBeRead)
{
    create_decoders(4);
    platform.script("MI_VDEC_GetChnStat").nth(1).returns(3);
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat 2"), 2u);
    EXPECT_PRINTED("[vdec_venc.c-#] MI_VDEC_GetChnStat errno is 0x3");
}

TEST_P(SingleSwitch, ReturnsZeroWhenTheFlushFails)
{
    create_decoders(4);
    platform.script("MI_VDEC_CreateChn").returns(kDrainRefused);
    EXPECT_EQ(GetParam().call(2), 0);
    EXPECT_PRINTED("MI_VDEC_CreateChn failed errno 0xa0080005,chnid:2 ");
}

} // namespace
