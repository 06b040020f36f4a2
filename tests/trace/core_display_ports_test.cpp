/* vo_start_chn and vo_stop_chn: ports laid out once, and the same rectangles ever after. */
#include <cstring>
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

MI_DISP_PubAttr full_hd()
{
    MI_DISP_PubAttr attr = {};
    attr.timing = 16;
    return attr;
}

bool holds(const PaneRect &rect, uint32_t x, uint32_t y, uint32_t w, uint32_t h)
{
    return rect.x == x && rect.y == y && rect.w == w && rect.h == h;
}

TEST(StartPorts, StoresThePanesInTheDevicesBank)
{
    MI_DISP_PubAttr attr = full_hd();
    EXPECT_EQ(vo_start_chn(0, &attr, 2), 0);
    EXPECT_EQ(vo_start_chn(-1, &attr, 5), 0);
    EXPECT_EQ(vo_start_chn(3, &attr, 16), 0);
    EXPECT_TRUE(holds(set_bind_para[1][1], 960, 0, 960, 540));
    EXPECT_TRUE(holds(set_bind_para[2][4], 640, 360, 640, 360));
    EXPECT_TRUE(holds(set_bind_para[0][15], 1440, 810, 480, 270));
    static const PaneRect untouched[16] = {};
    EXPECT_EQ(std::memcmp(set_bind_para[3], untouched, sizeof untouched), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr -1 4 {window 640,360 640x360 source 0x0}"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_EnableInputPort 3 15"), 1u);
}

TEST(StartPorts, KeepsPanesEven)
{
    MI_DISP_PubAttr attr = {};
    attr.timing = 21; // 1366x768
    EXPECT_EQ(vo_start_chn(0, &attr, 9), 0);
    EXPECT_TRUE(holds(set_bind_para[1][4], 454, 256, 454, 256));
    EXPECT_TRUE(holds(set_bind_para[1][8], 910, 512, 454, 256));
}

TEST(StartPorts, ReusesTheFirstPanesWhateverTheCount)
{
    MI_DISP_PubAttr attr = full_hd();
    ASSERT_EQ(vo_start_chn(0, &attr, 2), 0);
    platform.forget();
    EXPECT_EQ(vo_start_chn(0, &attr, 3), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 960x540 source 0x0}
        MI_DISP_EnableInputPort 0 0
        MI_DISP_SetInputPortAttr 0 1 {window 960,0 960x540 source 0x0}
        MI_DISP_EnableInputPort 0 1
        MI_DISP_SetInputPortAttr 0 2 {window 0,0 0x0 source 0x0}
        MI_DISP_EnableInputPort 0 2
    )"));
}

TEST(StartPorts, AppliesTheStoredPanesOfALayout)
{
    MI_DISP_PubAttr attr = full_hd();
    ASSERT_EQ(vo_start_chn(0, &attr, 1), 0);
    set_bind_para[1][0] = {101, 51, 333, 222};
    platform.forget();
    EXPECT_EQ(vo_start_chn(0, &attr, 1), 0);
    EXPECT_EQ(platform.calls({"MI_DISP_SetInputPortAttr"}),
              "MI_DISP_SetInputPortAttr 0 0 {window 100,50 333x222 source 0x0}");
}

TEST(StartPorts, RefusesACountOutsideOneToSixteen)
{
    MI_DISP_PubAttr attr = full_hd();
    for (int32_t count : {0, 17, -1, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(vo_start_chn(0, &attr, count), -1);
    }
    EXPECT_EQ(recording::times_printed("failed with 0!"), 5u);
    EXPECT_EQ(platform.calls(), "");
}

TEST(StartPorts, RefusesAnOutputValueWithoutASize)
{
    MI_DISP_PubAttr attr = {};
    attr.timing = 30;
    EXPECT_EQ(vo_start_chn(0, &attr, 4), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "vo enIntfSync not support!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(StartPorts, RefusesMissingAttributes)
{
    EXPECT_EQ(vo_start_chn(0, nullptr, 4), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST(StartPorts, StopsAtTheFirstFailureAndStartsAfreshNextTime)
{
    MI_DISP_PubAttr attr = full_hd();
    for (const char *call : {"MI_DISP_SetInputPortAttr", "MI_DISP_EnableInputPort"}) {
        for (int32_t device : {0, -1, 2}) {
            SCOPED_TRACE(std::string(call) + " on device " + std::to_string(device));
            platform.forget();
            platform.script(call).nth(2).returns(0xA00F0003);
            EXPECT_EQ(vo_start_chn(device, &attr, 4), -1);
            EXPECT_EQ(platform.count(call), 2u);
            EXPECT_EQ(platform.count("MI_DISP_EnableInputPort " + std::to_string(device) + " 2"), 0u);
        }
    }
    platform.forget();
    platform.script("MI_DISP_SetInputPortAttr").once().returns(0xA00F0003);
    EXPECT_EQ(vo_start_chn(0, &attr, 1), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("vo_start_chn(#):failed with 0xa00f0003!");
    platform.forget();
    EXPECT_EQ(vo_start_chn(0, &attr, 1), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 0 {window 0,0 1920x1080 source 0x0}"), 1u)
        << "the failed attempts must not count as laid out";
}

TEST(StartPorts, ReapplyingStopsAtAFailureOnTheMainAndSecondaryDevice)
{
    MI_DISP_PubAttr attr = full_hd();
    for (const char *call : {"MI_DISP_SetInputPortAttr", "MI_DISP_EnableInputPort"}) {
        for (int32_t device : {0, -1}) {
            SCOPED_TRACE(std::string(call) + " on device " + std::to_string(device));
            ASSERT_EQ(vo_start_chn(device, &attr, 4), 0);
            platform.forget();
            platform.script(call).nth(2).returns(0xA00F0003);
            EXPECT_EQ(vo_start_chn(device, &attr, 4), -1);
            EXPECT_EQ(platform.count(call), 2u);
        }
    }
}

/* Deliberate: on every other device a failure is only reported. */
TEST(StartPorts, ReapplyingGoesOnAfterAFailureOnOtherDevices)
{
    MI_DISP_PubAttr attr = full_hd();
    for (const char *call : {"MI_DISP_SetInputPortAttr", "MI_DISP_EnableInputPort"}) {
        for (int32_t device : {1, 2, 15}) {
            SCOPED_TRACE(std::string(call) + " on device " + std::to_string(device));
            ASSERT_EQ(vo_start_chn(device, &attr, 4), 0);
            platform.forget();
            platform.script(call).nth(2).returns(0xA00F0003);
            EXPECT_EQ(vo_start_chn(device, &attr, 4), 0);
            EXPECT_EQ(platform.count(call), 4u);
            EXPECT_NE(recording::printed_text().find("failed with 0xa00f0003!"), std::string::npos);
        }
    }
}

TEST(StartPorts, NeverCountsADeviceWithoutASlotAsLaidOut)
{
    MI_DISP_PubAttr attr = full_hd();
    for (int32_t device : {16, 99, INT32_MAX, -2, INT32_MIN}) {
        SCOPED_TRACE(device);
        EXPECT_EQ(vo_start_chn(device, &attr, 1), 0);
        EXPECT_EQ(vo_start_chn(device, &attr, 4), 0);
        EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr " + std::to_string(device) +
                                 " 3 {window 960,540 960x540 source 0x0}"),
                  1u);
    }
}

TEST(StopPorts, DisablesEveryPort)
{
    EXPECT_EQ(vo_stop_chn(2, 3), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableInputPort 2 0
        MI_DISP_DisableInputPort 2 1
        MI_DISP_DisableInputPort 2 2
    )"));
    EXPECT_EQ(recording::times_printed("DISENABLE"), 3u);
}

TEST(StopPorts, ReturnsTheResultOfTheLastPort)
{
    platform.script("MI_DISP_DisableInputPort").nth(1).returns(0xA00F0002);
    EXPECT_EQ(vo_stop_chn(0, 3), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("[sdk3531Lib.c-#] Vo fault to unbind vpss errno is 0xa00f0002");
    EXPECT_EQ(platform.count("MI_DISP_DisableInputPort"), 3u);
    platform.script("MI_DISP_DisableInputPort").nth(3).returns(0xA00F0002);
    EXPECT_EQ(vo_stop_chn(0, 3), static_cast<int32_t>(0xA00F0002));
}

TEST(StopPorts, WithoutPortsDoesNothing)
{
    EXPECT_EQ(vo_stop_chn(0, 0), 0);
    EXPECT_EQ(vo_stop_chn(0, -7), 0);
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
