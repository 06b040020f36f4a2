/* The backlog check of ext_send_stream: the worse the link, the less may be queued. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;

namespace
{

class Backlog : public RunningDecoders
{
};

constexpr uint32_t kNever = 0; // no reset whatever the backlog

struct LimitRow {
    int32_t link_quality, rate_class;
    uint32_t limit;
};

constexpr LimitRow kLimits[] = {
    {INT32_MAX, 0, 2097152}, {100, 4, 2097152},       {100, 5, 2097152}, {85, 4, 2097152}, {85, 5, 2097152},
    {84, 4, 163840},         {84, 5, 131072},         {70, 4, 163840},   {60, 4, 163840},  {60, 5, 131072},
    {60, INT32_MAX, 131072}, {60, INT32_MIN, 163840}, {59, 4, 98304},    {59, 5, 49152},   {1, 4, 98304},
    {1, 5, 49152},           {1, -1, 98304},          {0, 4, kNever},    {0, 5, kNever},   {-1, 4, 2097152},
    {-5, 5, 2097152},        {INT32_MIN, 0, 2097152},
};

uint32_t backlog;

void report_backlog()
{
    platform.script("MI_VDEC_GetChnStat").fills([](recording::Args &args) {
        args.record<MI_VDEC_ChnStat>(1) = {backlog, 9, 9};
    });
}

TEST_F(Backlog, BeyondTheLimitOfTheLinkResetsTheDecoder)
{
    report_backlog();
    for (const LimitRow &row : kLimits) {
        SCOPED_TRACE("quality " + std::to_string(row.link_quality) + " class " +
                     std::to_string(row.rate_class));
        for (uint32_t left : {row.limit, row.limit + 1, 0u, 1u << 31, UINT32_MAX}) {
            SCOPED_TRACE(left);
            platform.forget();
            backlog = left;
            EXPECT_EQ(send_video(2, row.link_quality, row.rate_class), 0);
            bool reset = row.limit != kNever && left > row.limit;
            EXPECT_EQ(platform.count("MI_VDEC_StopChn 2"), reset ? 1u : 0u);
            EXPECT_EQ(platform.count("MI_VDEC_StartChn 2"), reset ? 1u : 0u);
            EXPECT_EQ(platform.count("MI_VDEC_SendStream 2"), 1u) << "the frame itself is still offered";
        }
    }
}

TEST_F(Backlog, IsReportedWithItsLimit)
{
    report_backlog();
    backlog = 163841;
    EXPECT_EQ(send_video(6, 70, 4), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX(
        "11111Chnn = 6,u32LeftStreamBytes[163841],LeftStreamBytes[163840],wifi_strengh[70]");
    EXPECT_EQ(platform.calls(), recording::trace(R"(
        MI_VDEC_GetChnStat 6
        MI_VDEC_StopChn 6
        MI_VDEC_StartChn 6
        MI_VDEC_SendStream 6 {100 bytes pts 1234605616436508552 eof 0 eos 0} 20
    )"));
}

TEST_F(Backlog, CountsForHiddenChannelsToo)
{
    report_backlog();
    backlog = 98305;
    cur_display_chnn = 0;
    EXPECT_EQ(send_video(1, 10, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn 1"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream"), 0u);
}

TEST_F(Backlog, UnreadableStatisticsNeverStopTheFrame)
{
    platform.script("MI_VDEC_GetChnStat").returns(0xA0080005);
    EXPECT_EQ(send_video(2, 10, 0), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("Chnn = 2 MI_VDEC_GetChnStat failed errno 0x0  vdec_venc.c #");
    EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 0u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 2"), 1u);
}

/* The code printed is that of the recreation in the same call. */
TEST_F(Backlog, UnreadableStatisticsPrintTheCodeOfTheRecreation)
{
    platform.script("MI_VDEC_StopChn").returns(0xA0080009);
    platform.script("MI_VDEC_GetChnStat").returns(0xA0080005);
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 2, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("Chnn = 2 MI_VDEC_GetChnStat failed errno 0xa0080009  vdec_venc.c #");
    platform.forget();
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("Chnn = 2 MI_VDEC_GetChnStat failed errno 0x0  vdec_venc.c #");
}

} // namespace
