/* local_bind_pip and local_unbind_pip: video layer 1 over the main picture. */
#include <gtest/gtest.h>

#include "core/device_state.h"
#include "media_call_count.h"
#include "nvrhal.h"
#include "recording_expect.h"
#include "view_frame.h"

using recording::platform;
using recording::trace;
using view_test::kDisplayRefused;

namespace
{

/* Bound to device 0 whichever device was asked for. */
TEST(PictureInPicture, IsPlacedOnLayer1OfDevice0)
{
    for (uint32_t dev : {0u, 1u}) {
        platform.forget();
        EXPECT_EQ(local_bind_pip(dev, 100, 200, 640, 360), 0);
        EXPECT_EQ(platform.calls({"MI_DISP_BindVideoLayer", "MI_DISP_GetVideoLayerAttr"}), trace(R"(
            MI_DISP_BindVideoLayer 1 0
            MI_DISP_GetVideoLayerAttr 1
        )"));
        EXPECT_EQ(platform.count("MI_DISP_SetVideoLayerAttr 1 {window 100,200 640x360 size 640x360 format "),
                  1u);
        EXPECT_EQ(platform.calls_since("MI_DISP_EnableVideoLayer"), trace("MI_DISP_EnableVideoLayer 1"));
        EXPECT_EQ(recording::media_calls(), 4u);
        EXPECT_PRINTED(" -----x = 100, y = 200, uw = 640, uh = 360,w = 640, h = 360");
    }
}

/* Whatever the layer held before, its pictures are in the format that start-up chose. */
TEST(PictureInPicture, HasThePixelFormatOfTheDevice)
{
    nvrhal::global_format_e = 77;
    platform.script("MI_DISP_GetVideoLayerAttr").fills([](recording::Args &call) {
        call.record<MI_DISP_VideoLayerAttr>(1).pixel_format = 5;
    });
    EXPECT_EQ(local_bind_pip(0, 0, 0, 64, 64), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetVideoLayerAttr 1 {window 0,0 64x64 size 64x64 format 77}"), 1u);
}

/* A window has 16-bit coordinates, the layer's size 32-bit ones. */
TEST(PictureInPicture, CutsItsWindowTo16BitsButNotItsSize)
{
    EXPECT_EQ(local_bind_pip(0, 65537, 65538, 70000, 80000), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetVideoLayerAttr 1 {window 1,2 4464x14464 size 70000x80000 "), 1u);
}

TEST(PictureInPicture, LeavesTheDeviceItIsToldToLeave)
{
    EXPECT_EQ(local_unbind_pip(1), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableVideoLayer 1
        MI_DISP_UnBindVideoLayer 1 1
    )"));
}

TEST(PictureInPicture, RefusesDevicesAbove1ComparedUnsigned)
{
    for (uint32_t dev : {2u, 3u, 0xFFFFFFFFu}) {
        EXPECT_EQ(local_bind_pip(dev, 0, 0, 64, 64), -1);
        EXPECT_EQ(local_unbind_pip(dev), -1);
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::times_printed("Pip video layer  dev 2 ip overload 2!"), 2u);
    EXPECT_EQ(recording::times_printed("Pip video layer  dev -1 ip overload 2!"), 2u);
}

TEST(PictureInPicture, StopsAtTheFirstFailure)
{
    const struct {
        const char *call, *text;
        unsigned calls;
        bool binding;
    } rows[] = {
        {"MI_DISP_BindVideoLayer", "Pip video layer bind to dev 1 failed with errno 0xa00f0003!", 1, true},
        {"MI_DISP_GetVideoLayerAttr", "Get pip video layer attributes failed with errno 0xa00f0003!", 2,
         true},
        {"MI_DISP_SetVideoLayerAttr", "Set pip video layer attributes failed with errno 0xa00f0003!", 3,
         true},
        {"MI_DISP_EnableVideoLayer", "Enable pip video layer failed with errno 0xa00f0003!", 4, true},
        {"MI_DISP_DisableVideoLayer", "Disable pip video layer failed with errno 0xa00f0003!", 1, false},
        {"MI_DISP_UnBindVideoLayer", "Pip video layer unbind to dev 1 failed with errno 0xa00f0003!", 2,
         false},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.script(row.call).once().returns(kDisplayRefused);
        EXPECT_EQ(row.binding ? local_bind_pip(1, 0, 0, 64, 64) : local_unbind_pip(1), -1) << row.call;
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", row.text);
        EXPECT_EQ(recording::media_calls(), row.calls) << row.call;
    }
}

} // namespace
