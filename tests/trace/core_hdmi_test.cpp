/* The HDMI transmitter: opened, configured while muted, kept in step with the monitor. */
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr const char *kBanner = "Hdmi_callbackppppppppppppppppppppppppppppppppppppppppppppppppp:";

TEST(HdmiStart, RegistersTheCallbackAndOpensTheDevice)
{
    EXPECT_EQ(vo_hdmi_start(4), 0u);
    EXPECT_EQ(platform.calls(), "MI_HDMI_Init {callback set user null}\nMI_HDMI_Open 0");
    EXPECT_EQ(platform.hdmi_registration().callback, &Hdmi_callback);
    EXPECT_EQ(platform.hdmi_registration().user_param, nullptr);
    EXPECT_PRINTED_WITHOUT_PREFIX("HDMI start success.");
}

TEST(HdmiStart, NeverFails)
{
    platform.script("MI_HDMI_Init").returns(0xA00A0004);
    platform.script("MI_HDMI_Open").returns(0xA00A0005);
    EXPECT_EQ(vo_hdmi_start(UINT32_MAX), 0u);
    EXPECT_EQ(platform.count("MI_HDMI_Open"), 1u);
    EXPECT_PRINTED_IN_ORDER(R"(
        MI_HDMI_Init fail =a00a0004
        MI_HDMI_Open fail =a00a0005
        HDMI start success.
    )");
}

TEST(HdmiStop, ClosesEverythingWhateverTheResults)
{
    platform.script("MI_HDMI_Stop").returns(-1);
    platform.script("MI_HDMI_Close").returns(-1);
    platform.script("MI_HDMI_DeInit").returns(-1);
    EXPECT_EQ(vo_hdmi_stop(), 0u);
    EXPECT_EQ(platform.calls(), "MI_HDMI_Stop 0\nMI_HDMI_Close 0\nMI_HDMI_DeInit");
}

TEST(HdmiConfigure, SetsTheAttributesWhileMuted)
{
    EXPECT_EQ(ST_Hdmi_Start(0, 37), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_HDMI_SetAvMute 0 1
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 37 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_Start 0
        MI_HDMI_SetAvMute 0 0
    )"));
    EXPECT_PRINTED_IN_ORDER(R"(
        # Start test: MI_HDMI_SetAttr(eHdmi, &stAttr)
        AUDIO_TEST [#] MI_HDMI_SetAttr(eHdmi, &stAttr)  exec function pass
        # End test: MI_HDMI_SetAttr(eHdmi, &stAttr)
        # Start test: MI_HDMI_Start(eHdmi)
        AUDIO_TEST [#] MI_HDMI_Start(eHdmi)  exec function pass
        # End test: MI_HDMI_Start(eHdmi)
        MI_HDMI_SetAvMute[ST_Hdmi_Start][#]
    )");
}

/* The muting names device 0 whatever device is configured. */
TEST(HdmiConfigure, AlwaysMutesDeviceZero)
{
    EXPECT_EQ(ST_Hdmi_Start(1, 9), 0);
    EXPECT_EQ(platform.count("MI_HDMI_SetAvMute 0 1"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_SetAttr 1"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_Start 1"), 1u);
}

TEST(HdmiConfigure, LeavesTheOutputMutedAfterAFailure)
{
    platform.script("MI_HDMI_SetAttr").once().returns(0xA00A0003);
    EXPECT_EQ(ST_Hdmi_Start(0, 9), 1);
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 0u);
    EXPECT_EQ(platform.count("MI_HDMI_SetAvMute 0 0"), 0u);
    EXPECT_PRINTED_WITHOUT_PREFIX(
        "AUDIO_TEST [#] MI_HDMI_SetAttr(eHdmi, &stAttr) exec function failed, result:0xa00a0003");
    EXPECT_NOT_PRINTED("# End test: MI_HDMI_SetAttr(eHdmi, &stAttr)");

    platform.script("MI_HDMI_Start").once().returns(0xA00A0003);
    EXPECT_EQ(ST_Hdmi_Start(0, 9), 1);
    EXPECT_EQ(platform.count("MI_HDMI_SetAvMute 0 0"), 0u);
    EXPECT_PRINTED_WITHOUT_PREFIX(
        "AUDIO_TEST [#] MI_HDMI_Start(eHdmi) exec function failed, result:0xa00a0003");
}

TEST(HdmiConfigure, DoesNotCheckTheMuting)
{
    platform.script("MI_HDMI_SetAvMute").returns(-1);
    EXPECT_EQ(ST_Hdmi_Start(0, 9), 0);
    EXPECT_EQ(platform.count("MI_HDMI_SetAvMute"), 2u);
}

TEST(HdmiEvent, PlugReappliesTheAttributes)
{
    ASSERT_EQ(ST_Hdmi_Start(0, 41), 0);
    ASSERT_EQ(vo_hdmi_start(4), 0u);
    platform.forget();
    uint32_t device = 0;
    platform.hdmi_registration().callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_HDMI_GetSinkInfo 0
        MI_HDMI_GetAttr 0
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 41 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_Start 0
    )"));
    EXPECT_PRINTED_IN_ORDER(std::string(kBanner) +
                            "\npEventParam=:\npUsrParam=(null):\nget sink caps success!");
}

TEST(HdmiEvent, PlugServesTheDeviceThatTheParameterPointsAt)
{
    uint32_t device = 3;
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_EQ(platform.count("MI_HDMI_GetSinkInfo 3"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_GetAttr 3"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_SetAttr 3"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_Start 3"), 1u);
}

TEST(HdmiEvent, PlugWorksWithoutTheMonitorsDescription)
{
    uint32_t device = 0;
    platform.script("MI_HDMI_GetSinkInfo").returns(0xA00A0005);
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_PRINTED_WITHOUT_PREFIX("get sink caps failed!");
    EXPECT_EQ(platform.count("MI_HDMI_SetAttr"), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 1u);
}

TEST(HdmiEvent, PlugStopsWhenTheAttributesCannotBeReadOrWritten)
{
    uint32_t device = 0;
    platform.script("MI_HDMI_GetAttr").once().returns(0xA00A0007);
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "return value is not MI_SUCCESS, 0xa00a0007!");
    EXPECT_EQ(platform.count("MI_HDMI_SetAttr"), 0u);
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 0u);

    platform.script("MI_HDMI_SetAttr").once().returns(0xA00A0008);
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "return value is not MI_SUCCESS, 0xa00a0008!");
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 0u);
}

TEST(HdmiEvent, PlugDoesNotCheckTheRestart)
{
    uint32_t device = 0;
    platform.script("MI_HDMI_Start").returns(0xA00A0009);
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, &device, nullptr);
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 1u);
    EXPECT_EQ(recording::printed_text().find("a00a0009"), std::string::npos);
}

TEST(HdmiEvent, PlugWithoutAParameterChangesNothing)
{
    Hdmi_callback(0, MI_HDMI_EVENT_PLUGGED, nullptr, nullptr);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_PRINTED_IN_ORDER(std::string(kBanner) +
                            "\npEventParam=(null):\npUsrParam=(null):\nThe pointer is null");
}

TEST(HdmiEvent, UnplugStopsTheTransmitter)
{
    uint32_t device = 2;
    Hdmi_callback(0, MI_HDMI_EVENT_UNPLUGGED, &device, nullptr);
    EXPECT_EQ(platform.calls(), "MI_HDMI_Stop 2");
    Hdmi_callback(0, MI_HDMI_EVENT_UNPLUGGED, nullptr, nullptr);
    EXPECT_EQ(platform.calls(), "MI_HDMI_Stop 2");
    EXPECT_PRINTED_WITHOUT_PREFIX("The pointer is null");
}

TEST(HdmiEvent, OthersAreOnlyReported)
{
    for (uint32_t event : {2u, 3u, 255u, UINT32_MAX}) {
        uint32_t device = 0;
        Hdmi_callback(0, event, &device, nullptr);
        Hdmi_callback(0, event, nullptr, nullptr);
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::times_printed(kBanner), 8u);
    EXPECT_NOT_PRINTED("The pointer is null");
}

/* The parameter is a 32-bit number, not a text: at most its four bytes are printed. */
TEST(HdmiEvent, PrintsNoMoreOfAParameterThanItHolds)
{
    uint32_t *number = new uint32_t(0x44434241); // on the heap, where the address sanitizer watches its end
    Hdmi_callback(0, 9, number, number);
    EXPECT_PRINTED_WITHOUT_PREFIX("pEventParam=ABCD:");
    EXPECT_PRINTED_WITHOUT_PREFIX("pUsrParam=ABCD:");
    delete number;

    char text[] = "WXYZ, and what stands behind it";
    Hdmi_callback(0, 9, text, text);
    EXPECT_PRINTED_WITHOUT_PREFIX("pEventParam=WXYZ:");
    EXPECT_PRINTED_WITHOUT_PREFIX("pUsrParam=WXYZ:");
}

} // namespace
