/* Exported state as the process finds it, and the operations that do nothing. */
#include <cstring>

#include "nvrhal.h"
#include "recording_expect.h"

namespace
{

TEST(StateAtLoad, HasTheStatedInitialValues)
{
    EXPECT_EQ(g_vi_chn_num, 8);
    EXPECT_EQ(enNorm_vga, 4u);
    EXPECT_EQ(globalVoDev, 0);
    EXPECT_EQ(cur_display_chnn, 255);
    EXPECT_EQ(cur_snap_chnn, 255);
    EXPECT_EQ(playback_status, 0u);
    EXPECT_EQ(vo_for_ezoom, 0u);
    EXPECT_EQ(zoom_channel, 0u);
    EXPECT_EQ(zoom_flag_click, 0u);
}

template <class T> bool all_zero(const T &object)
{
    static const T zero = {};
    return std::memcmp(&object, &zero, sizeof object) == 0;
}

TEST(StateAtLoad, IsZeroWhereNothingElseIsStated)
{
    EXPECT_TRUE(all_zero(DdvrInputParam));
    EXPECT_TRUE(all_zero(major_stream));
    EXPECT_TRUE(all_zero(minor_stream));
    EXPECT_TRUE(all_zero(global_bindarg));
    EXPECT_TRUE(all_zero(old_global_bindarg));
    EXPECT_TRUE(all_zero(set_bind_para));
}

TEST(StateAtLoad, HasAnUnlockedLayoutLock)
{
    ASSERT_EQ(pthread_mutex_trylock(&global_bindargLock), 0);
    EXPECT_EQ(pthread_mutex_unlock(&global_bindargLock), 0);
}

using NoOp = int (*)(...);

constexpr NoOp kNoOps[] = {
    vo_mem_config,       vo_bindvowbc,        vo_unbindvowbc,        vo_bind_vi,
    vodh0_bind_vodsd0,   voChn_unbind_viChn,  vpss_mem_config,       vpss_create_vpss,
    vpss_stop,           vi_bind_vpss,        vi_unbind_vpss,        vi_bind_vpss_chan,
    vi_unbind_vpss_chan, venc_bind_vo,        venc_mem_config,       venc_bind_vpss,
    venc_unbind_vpss,    venc_stop_getstream, vdec_mem_config,       vdec_bind_vo,
    rgn_mem_config,      rgn_create,          rgn_detach_frm_chn,    rgn_overlay_change_alpha,
    rgn_destroy,         rgn_show_or_hide,    rgn_overlay_chg_color,
};
static_assert(sizeof kNoOps / sizeof kNoOps[0] == 27);

TEST(EmptyOperations, TakeAnythingAndReturnZero)
{
    char text[] = "anything";
    for (NoOp operation : kNoOps) {
        EXPECT_EQ(operation(), 0);
        EXPECT_EQ(operation(1, 2, 3, 4, 5, 6, 7, 8), 0);
        EXPECT_EQ(operation(text, 2.5, nullptr), 0);
    }
    EXPECT_STREQ(text, "anything");
    EXPECT_EQ(recording::platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "");
}

} // namespace
