/* Sizes and offsets of the public records. Those of records with pointers are the 32-bit target's. */
#include <gtest/gtest.h>

#include <cstddef>

#include "nvrhal.h"
#include "seen_sizes.h"

namespace
{

constexpr bool kTargetWords = sizeof(void *) == 4;

#define EXPECT_SIZE(type, bytes) EXPECT_EQ(sizeof(type), static_cast<size_t>(bytes)) << #type
#define EXPECT_AT(type, field, offset)                                                                       \
    EXPECT_EQ(offsetof(type, field), static_cast<size_t>(offset)) << #type "." #field

TEST(AbiRecord, DeviceParamsIs267Words)
{
    EXPECT_SIZE(DeviceParams, 1068);
    EXPECT_AT(DeviceParams, net_video_size[0], 516);
    EXPECT_AT(DeviceParams, net_video_size[16], 580);
    EXPECT_AT(DeviceParams, vi_chn_num, 1028);
    EXPECT_AT(DeviceParams, vo_dev_type, 1040);
    EXPECT_AT(DeviceParams, gui_width, 1052);
    EXPECT_AT(DeviceParams, gui_height, 1056);
}

TEST(AbiRecord, StreamAttrIsThirteenWords)
{
    EXPECT_SIZE(StreamAttr, 13 * 4);
    EXPECT_AT(StreamAttr, size_class, 4 * 4);
    EXPECT_AT(StreamAttr, width, 5 * 4);
    EXPECT_AT(StreamAttr, height, 6 * 4);
    EXPECT_AT(StreamAttr, frame_rate, 7 * 4);
    EXPECT_AT(StreamAttr, quality_1, 8 * 4);
    EXPECT_AT(StreamAttr, encode_mode, 9 * 4);
    EXPECT_AT(StreamAttr, quality_2, 10 * 4);
    EXPECT_AT(StreamAttr, quality_3, 11 * 4);
    EXPECT_AT(StreamAttr, format, 12 * 4);
    EXPECT_EQ(sizeof major_stream, 17u * 52);
    EXPECT_EQ(sizeof minor_stream, 16u * 52);
}

TEST(AbiRecord, DispAttribIsEightHalfWords)
{
    EXPECT_SIZE(DispAttrib, 16);
    EXPECT_AT(DispAttrib, bind_status, 0);
    EXPECT_AT(DispAttrib, channel, 2);
    EXPECT_AT(DispAttrib, x, 4);
    EXPECT_AT(DispAttrib, y, 6);
    EXPECT_AT(DispAttrib, w, 8);
    EXPECT_AT(DispAttrib, h, 10);
}

TEST(AbiRecord, BindArgsIs34Words)
{
    EXPECT_SIZE(BindArgs, 34 * 4);
    EXPECT_AT(BindArgs, chn, 0);
    EXPECT_AT(BindArgs, vo_dev, 16 * 4);
    EXPECT_AT(BindArgs, chn_num, 17 * 4);
    EXPECT_AT(BindArgs, bind_status, 18 * 4);
    EXPECT_EQ(sizeof old_global_bindarg, 408u);
}

TEST(AbiRecord, PaneRectanglesAreFourBanksOfSixteen)
{
    EXPECT_SIZE(PaneRect, 16);
    EXPECT_AT(PaneRect, y, 4);
    EXPECT_AT(PaneRect, w, 8);
    EXPECT_AT(PaneRect, h, 12);
    EXPECT_EQ(sizeof set_bind_para, 4u * 16 * 16);
}

TEST(AbiRecord, SelectionStateHasTheStatedWidths)
{
    EXPECT_EQ(sizeof cur_display_chnn, 1u);
    EXPECT_EQ(sizeof cur_snap_chnn, 4u);
    EXPECT_EQ(sizeof playback_status, 4u);
    EXPECT_EQ(sizeof zoom_channel, 4u);
    EXPECT_EQ(sizeof vo_for_ezoom, 4u);
    EXPECT_EQ(sizeof g_vi_chn_num, 4u);
    EXPECT_EQ(sizeof globalVoDev, 4u);
    EXPECT_EQ(sizeof enNorm_vga, 4u);
    EXPECT_EQ(sizeof zoom_arg, 12u);
    EXPECT_EQ(sizeof zoom_arg_pre, 12u);
}

TEST(AbiRecord, StreamPoolRecordsHaveTheStatedLayout)
{
    EXPECT_SIZE(StreamIndexEntry, 28);
    EXPECT_AT(StreamIndexEntry, timestamp, 4);
    EXPECT_AT(StreamIndexEntry, data_start, 12);
    EXPECT_AT(StreamIndexEntry, index_circle, 24);
    EXPECT_SIZE(StreamRingSizes, 12);
    EXPECT_AT(StreamPoolConfig, channels, 4);
}

TEST(AbiRecord, FrameInfoIsFifteenWordsOnTheTarget)
{
    EXPECT_AT(FrameInfo, frame_type, 0);
    EXPECT_AT(FrameInfo, media, 4);
    EXPECT_AT(FrameInfo, length, 8);
    EXPECT_AT(FrameInfo, width, 12);
    EXPECT_AT(FrameInfo, height, 16);
    if (!kTargetWords) GTEST_SKIP() << "the fields behind the pointer are pinned in the 32-bit build";
    EXPECT_SIZE(FrameInfo, 60);
    EXPECT_AT(FrameInfo, data, 20);
    EXPECT_AT(FrameInfo, channel, 24);
    EXPECT_AT(FrameInfo, stream_id, 28);
    EXPECT_AT(FrameInfo, local_time, 44);
    EXPECT_AT(FrameInfo, pts, 52);
}

TEST(AbiRecord, StreamReaderIsElevenWordsOnTheTarget)
{
    if (!kTargetWords) GTEST_SKIP() << "holds pointers: pinned in the 32-bit build";
    EXPECT_SIZE(StreamReader, 44);
    EXPECT_AT(StreamReader, p_stream_index, 24);
    EXPECT_AT(StreamReader, data_start, 28);
    EXPECT_AT(StreamReader, data_circle, 36);
    EXPECT_AT(StreamReader, p_buf_data, 40);
    EXPECT_SIZE(StreamProducerFrame, 820);
    EXPECT_AT(StreamProducerFrame, piece_lengths, 16);
    EXPECT_AT(StreamProducerFrame, pieces, 416);
    EXPECT_AT(StreamProducerFrame, timestamp, 816);
}

TEST(AbiRecord, FramebufferStateHasTheStatedOrderOnTheTarget)
{
    EXPECT_SIZE(OsdCompInfo, 16);
    EXPECT_EQ(sizeof s_OSDCompInfo, 8u * 16);
    EXPECT_EQ(sizeof CurseValue, 2048u);
    if (!kTargetWords) GTEST_SKIP() << "holds pointers: pinned in the 32-bit build";
    EXPECT_AT(OsdInfo, app_buffer_second, 8);
    EXPECT_AT(OsdInfo, app_buffer_third, 20);
    EXPECT_AT(OsdInfo, mapped_address, 24);
    EXPECT_AT(OsdInfo, app_buffer_first, 32);
    EXPECT_AT(OsdInfo, mapped_length, 36);
    EXPECT_AT(OsdInfo, descriptor, 40);
    EXPECT_AT(OsdInfo, path, 44);
    EXPECT_AT(OsdInfo, fixed, 68);
}

TEST(AbiRecord, InputNodesGiveWholeWords)
{
    EXPECT_SIZE(RemoteFrame, 12);
    EXPECT_AT(RemoteFrame, code, 4);
    EXPECT_AT(RemoteFrame, state, 8);
    EXPECT_SIZE(PanelKey, 4);
    EXPECT_SIZE(MouseRecord, 20);
    EXPECT_AT(MouseRecord, buttons, 4);
    EXPECT_AT(MouseRecord, x, 8);
    EXPECT_AT(MouseRecord, y, 12);
    EXPECT_AT(MouseRecord, wheel, 16);
    EXPECT_SIZE(KeyEvent, 20);
    EXPECT_AT(KeyEvent, code, 8);
    EXPECT_SIZE(LocalKey, 8);
}

TEST(AbiRecord, LooksTheSameFromBothLanguages)
{
    size_t c[kSeenSizes] = {}, cxx[kSeenSizes] = {};
    sizes_in_c(c);
    sizes_in_cxx(cxx);
    for (int i = 0; i < kSeenSizes; ++i)
        EXPECT_EQ(c[i], cxx[i]) << "entry " << i;
    EXPECT_EQ(c[0], 1068u);
}

} // namespace
