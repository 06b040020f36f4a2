/* Every request of the framebuffer's set-up failing in turn: result, text, what is released. */
#include <gtest/gtest.h>

#include "gui_screen.h"

using gui_test::plug_framebuffer;
using recording::platform;

namespace
{

constexpr char kFb[] = "/dev/fb0";
constexpr int32_t kClosed = -1;

const std::string kPlacingText = "AAAAAAAAAAAAError: failed to FBIOSET_DISPLAYLAYER_ATTRIBUTES";

struct Failure {
    const char *name;
    unsigned long request;
    unsigned nth; // the how-many-th such request fails
    int32_t code;
    int32_t result;
    std::string text; // on standard output; empty: on standard error
    bool unmapped;    // the mapping is undone
    bool released;    // the descriptor is closed
    bool maps;        // the failure comes after the mapping
};

void PrintTo(const Failure &failure, std::ostream *out)
{
    *out << failure.name;
}

// clang-format off
const Failure kFailures[] = {
    {"FirstScreenInformation", FBIOGET_VSCREENINFO, 1, -1, 0, "Get variable screen info failed!", false, true, false},
    {"FixedInformation", FBIOGET_FSCREENINFO, 1, -1, -1, "InitOsd FBIOGET_FSCREENINFO failed", false, true, false},
    // The line end counts.
    {"Placing", FBIOSET_DISPLAYLAYER_ATTRIBUTES, 1, -1, static_cast<int32_t>(kPlacingText.size()) + 1, kPlacingText,
     false, false, true},
    {"PlacingWithAPositiveCode", FBIOSET_DISPLAYLAYER_ATTRIBUTES, 1, 3,
     static_cast<int32_t>(kPlacingText.size()) + 1, kPlacingText, false, false, true},
    {"ReadingAttributes", FBIOGET_DISPLAYLAYER_ATTRIBUTES, 1, -1, -1, "", false, false, true},
    {"ReadingAttributesWithAPositiveCode", FBIOGET_DISPLAYLAYER_ATTRIBUTES, 1, 3, -1, "", false, false, true},
    {"ColourFormat", FBIOSET_DISPLAYLAYER_ATTRIBUTES, 2, -1, -1, "", false, false, true},
    {"Showing", FBIOSET_SHOW, 1, -1, -1, "InitOsd FBIOPUT_SHOW_HIFB failed", true, true, true},
    {"ReadingTheColourKey", FBIOGET_COLORKEY, 1, -1, -1, "Error: failed to FBIOGET_COLORKEY", true, true, true},
    {"ReadingAlpha", FBIOGET_GLOBAL_ALPHA, 1, -1, -1, "FBIOGET_GLOBAL_ALPHA failed", true, true, true},
    {"WritingAlpha", FBIOSET_GLOBAL_ALPHA, 1, -1, -1, "InitOsd FBIOPUT_ALPHA_HIFB failed", true, true, true},
};
// clang-format on

class FramebufferFailure : public testing::TestWithParam<Failure>
{
};

} // namespace

TEST_P(FramebufferFailure, EndsTheSetUpAsItsPlaceDemands)
{
    const Failure &failure = GetParam();
    plug_framebuffer();
    platform.node(kFb).ioctl(failure.request).nth(failure.nth).returns(failure.code);

    EXPECT_EQ(fb_init(0, 1280, 720), failure.result);
    if (!failure.text.empty()) {
        EXPECT_PRINTED_WITHOUT_PREFIX(failure.text);
    }
    EXPECT_NOT_PRINTED("fb init done!");

    EXPECT_EQ(platform.count("board_unmap"), failure.unmapped ? 1u : 0u);
    EXPECT_EQ(platform.count("board_close"), failure.released ? 1u : 0u);
    EXPECT_EQ(g_osd_info.descriptor == kClosed, failure.released);
    // Where the mapping stays, so do its address and length; where it went, no painter may write.
    const bool mapped = failure.maps && !failure.unmapped;
    EXPECT_EQ(g_osd_info.mapped_address != nullptr, mapped);
    EXPECT_EQ(g_osd_info.mapped_length, mapped ? 1843200u : 0u);

    // The failing request is the last one; what follows only gives back, mapping first.
    const std::string rest = platform.calls_since("board_map");
    if (failure.unmapped) {
        EXPECT_LT(rest.find("board_unmap"), rest.find("board_close"));
    }
}

INSTANTIATE_TEST_SUITE_P(Requests, FramebufferFailure, testing::ValuesIn(kFailures),
                         [](const auto &tested) { return tested.param.name; });

TEST(FramebufferFailures, ADeviceThatCannotBeOpenedIsASuccess)
{
    plug_framebuffer();
    platform.node(kFb).fails_to_open();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("dev_fb _Open /dev/fb0 fail");
    EXPECT_EQ(platform.calls(), "board_open /dev/fb0 rdwr");
    EXPECT_EQ(g_osd_info.descriptor, kClosed);
    EXPECT_EQ(ext_tde_begin_job(), -1);
}

TEST(FramebufferFailures, AFailedMappingReleasesTheDevice)
{
    plug_framebuffer();
    platform.script("board_map").returns(-1);
    EXPECT_EQ(fb_init(0, 1280, 720), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("InitOsd mmap failed");
    EXPECT_EQ(g_osd_info.descriptor, kClosed);
    EXPECT_EQ(g_osd_info.mapped_address, nullptr);
    EXPECT_EQ(platform.count("board_close /dev/fb0"), 1u);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40344669"), 0u);
}

// The text names the reading of the key, and ends without a line end.
TEST(FramebufferFailures, WritingTheColourKeyIsReportedUnderTheReadsName)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOSET_COLORKEY).returns(-1);
    EXPECT_EQ(fb_init(0, 1280, 720), -1);
    const std::string text = recording::printed_text();
    const std::string wanted = "Error: failed to FBIOGET_COLORKEY";
    ASSERT_GE(text.size(), wanted.size());
    EXPECT_EQ(text.substr(text.size() - wanted.size()), wanted);
    EXPECT_EQ(platform.count("board_unmap"), 1u);
    EXPECT_EQ(platform.count("board_close"), 1u);
    EXPECT_EQ(g_osd_info.descriptor, kClosed);
    EXPECT_EQ(g_osd_info.mapped_address, nullptr);
}

// Only a negative result is a failure of these, though any non-zero one is of the attributes.
TEST(FramebufferFailures, PositiveResultsOfOtherRequestsAreAccepted)
{
    plug_framebuffer();
    for (unsigned long request :
         {FBIOSET_SHOW, FBIOGET_COLORKEY, FBIOSET_COLORKEY, FBIOGET_GLOBAL_ALPHA, FBIOSET_GLOBAL_ALPHA})
        platform.node(kFb).ioctl(request).returns(5);
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_PRINTED("fb init done!");
}

TEST(FramebufferFailures, ReleaseLeavesDescriptorZeroOpen)
{
    plug_framebuffer();
    platform.node(kFb).opens_as(0);
    platform.node(kFb).ioctl(FBIOGET_FSCREENINFO).returns(-1);
    EXPECT_EQ(fb_init(0, 1280, 720), -1);
    EXPECT_EQ(platform.count("board_close"), 0u);
    EXPECT_EQ(g_osd_info.descriptor, kClosed);
}

TEST(FramebufferFailures, TextsOfTheSystemsErrorPrinterGoToStandardError)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOGET_DISPLAYLAYER_ATTRIBUTES).once().returns(-1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(fb_init(0, 1280, 720), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind(
                  "BBBBBBBBBBBBBBBBBBBBBBBBBBBBBBError: failed to FBIOGET_DISPLAYLAYER_ATTRIBUTES: ", 0),
              0u);

    platform.node(kFb).ioctl(FBIOSET_DISPLAYLAYER_ATTRIBUTES).nth(2).returns(-1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(fb_init(0, 1280, 720), -1);
    EXPECT_EQ(
        testing::internal::GetCapturedStderr().rfind("Error: failed to FBIOSET_DISPLAYLAYER_ATTRIBUTES: ", 0),
        0u);
}

TEST(FramebufferExits, AFixedInformationThatCannotBeReadAgain)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOGET_FSCREENINFO).nth(2).returns(-1);
    EXPECT_EXIT(fb_init(0, 1280, 720), testing::ExitedWithCode(0), "");
    EXPECT_PRINTED_WITHOUT_PREFIX("Error reading fixed information");
}

TEST(FramebufferExits, AVariableInformationThatCannotBeReadAgain)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOGET_VSCREENINFO).nth(2).returns(-1);
    EXPECT_EXIT(fb_init(0, 1280, 720), testing::ExitedWithCode(0), "");
    EXPECT_PRINTED_WITHOUT_PREFIX("Error reading variable information");
}

TEST(FramebufferExits, APanningThatFails)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOPAN_DISPLAY).returns(-1);
    EXPECT_EXIT(fb_init(0, 1280, 720), testing::ExitedWithCode(0), "");
    EXPECT_PRINTED_WITHOUT_PREFIX("Error reading variable information");
}

TEST(FramebufferExits, AVariableInformationThatCannotBeReadBehindTheFormat)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOGET_VSCREENINFO).nth(3).returns(-1);
    EXPECT_EXIT(fb_init(0, 1280, 720), testing::ExitedWithCode(0), "Error reading variable information: ");
    EXPECT_NOT_PRINTED("Error reading variable information");
}

// These four look for -1 exactly.
TEST(FramebufferExits, NotOnOtherNegativeCodes)
{
    plug_framebuffer();
    platform.node(kFb).ioctl(FBIOGET_FSCREENINFO).nth(2).returns(-2);
    platform.node(kFb).ioctl(FBIOGET_VSCREENINFO).nth(2).returns(-2);
    platform.node(kFb).ioctl(FBIOPAN_DISPLAY).returns(-2);
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
}

// Whatever fails, the set-up ends: with a result, or with the process and status 0.
TEST(FramebufferSweep, EveryCallFailingOnceEndsDefined)
{
    for (unsigned n = 1;; ++n) {
        ASSERT_LT(n, 40u);
        recording::Outcome outcome = recording::in_fresh_process([n] {
            plug_framebuffer();
            platform.fail_call(n, -1);
            return static_cast<int64_t>(fb_init(0, 1280, 720));
        });
        if (!outcome.finished) {
            EXPECT_NE(outcome.death.find("exit"), std::string::npos) << n << ": " << outcome.death;
            continue;
        }
        if (outcome.failed_call.empty()) {
            EXPECT_EQ(n, 17u) << "sixteen calls can fail";
            break;
        }
        EXPECT_TRUE(outcome.result == 0 || outcome.result == -1 ||
                    outcome.result == static_cast<int64_t>(kPlacingText.size()) + 1)
            << outcome.failed_call;
    }
}
