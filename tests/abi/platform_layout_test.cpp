/* Sizes of the platform's records, as its headers state them. */
#include <gtest/gtest.h>

#include <cstddef>

#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace
{

TEST(AbiPlatform, RecordsWithoutPointersHaveTheStatedSizes)
{
    EXPECT_EQ(sizeof(MI_SYS_Version), 128u);
    EXPECT_EQ(sizeof(MI_SYS_ChnPort), 16u);
    EXPECT_EQ(sizeof(MI_Rect), 8u);
    EXPECT_EQ(sizeof(MI_VDEC_ChnAttr), 32u);
    EXPECT_EQ(sizeof(MI_VDEC_ChnStat), 12u);
    EXPECT_EQ(sizeof(MI_VDEC_OutputPortAttr), 4u);
    EXPECT_EQ(sizeof(MI_DISP_PubAttr), 16u);
    EXPECT_EQ(sizeof(MI_DISP_VideoLayerAttr), 24u);
    EXPECT_EQ(sizeof(MI_DISP_InputPortAttr), 12u);
    EXPECT_EQ(sizeof(MI_HDMI_Attr), 56u);
    EXPECT_EQ(sizeof(MI_HDMI_SinkInfo), 16u);
    EXPECT_EQ(sizeof(MI_AO_PubAttr), 32u);
    EXPECT_EQ(sizeof(MI_AO_AdecAttr), 12u);
    EXPECT_EQ(sizeof(MI_DIVP_ChnAttr), 32u);
    EXPECT_EQ(sizeof(MI_DIVP_OutputPortAttr), 16u);
    EXPECT_EQ(sizeof(MI_VENC_ChnAttr), 32u);
    EXPECT_EQ(sizeof(MI_VENC_JpegParam), 8u);
}

TEST(AbiPlatform, RecordsWithPointersHaveTheStatedSizesOnTheTarget)
{
    if (sizeof(void *) != 4) GTEST_SKIP() << "hold pointers: pinned in the 32-bit build";
    EXPECT_EQ(sizeof(MI_AO_Frame), 168u);
    EXPECT_EQ(offsetof(MI_AO_Frame, data), 8u);
    EXPECT_EQ(offsetof(MI_AO_Frame, length_bytes), 84u);
    EXPECT_EQ(sizeof(MI_VENC_Pack), 136u);
    EXPECT_EQ(sizeof(MI_VDEC_Stream), 24u);
    EXPECT_EQ(offsetof(MI_VDEC_Stream, pts), 8u);
}

TEST(AbiPlatform, ResultCodesNameModuleAndReason)
{
    EXPECT_EQ(static_cast<uint32_t>(MI_ERROR(MI_MODULE_VDEC, MI_REASON_BAD_VALUE)), 0xA0080003u);
    EXPECT_EQ(MI_MODULE_VDEC, 8);
    EXPECT_EQ(MI_MODULE_DISP, 15);
}

} // namespace
