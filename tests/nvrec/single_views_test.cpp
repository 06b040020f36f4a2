/* Sixteen cameras, each of them alone on the whole screen: also those without a bit in the library's mask. */
#include <array>
#include <cstdlib>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "host/host.h"
#include "running_wall.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using nvrec_test::RunningWall;

constexpr int kSixteen = 16;
constexpr size_t kColours = 6;
constexpr std::array<std::array<int, 3>, kColours> kSeen = {
    {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {0, 255, 255}, {255, 0, 255}}};

/* Whether the middle and the corners of the screen have the colour of that camera's clip. */
bool screen_shows(int channel)
{
    vboard_image image = {};
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return false;
    constexpr int kCodecAndRangeError = 8;
    bool same = image.width == 1920 && image.height == 1080;
    for (const auto &[x, y] : {std::pair(960u, 540u), {5u, 5u}, {1914u, 5u}, {5u, 1074u}, {1914u, 1074u}}) {
        for (uint32_t part = 0; part < 3 && same; ++part) {
            const int value = image.bytes[(y * image.width + x) * 3 + part];
            same =
                std::abs(value - kSeen[static_cast<size_t>(channel) % kColours][part]) <= kCodecAndRangeError;
        }
    }
    vboard_image_free(&image);
    return same;
}

/* Enlarges one camera after the other, each once its picture is on the screen. */
class EachAlone final : public Module
{
public:
    bool start(WallControl &wall) override
    {
        wall_ = &wall;
        return true;
    }

    Clock::time_point take_turn(Clock::time_point now) override
    {
        constexpr auto kLook = std::chrono::milliseconds(20);
        constexpr auto kLongest = std::chrono::seconds(10);
        if (channel_ == kSixteen) return Clock::time_point::max();
        if (wall_->enlarged() != channel_) {
            wall_->enlarge(channel_);
            began_at_ = Clock::now();
            const auto hidden = host::decoder_counters(hidden_channel());
            decoded_before_ = hidden ? hidden->decoded : 0;
        } else if (screen_shows(channel_) || now - began_at_ > kLongest) {
            shown += screen_shows(channel_);
            const auto hidden = host::decoder_counters(hidden_channel());
            decoded_for_nobody += hidden ? hidden->decoded - decoded_before_ : 0;
            ++channel_;
            if (channel_ == kSixteen) wall_->end(0);
        }
        return now + kLook;
    }

    bool busy() const override { return channel_ < kSixteen; }

    int shown = 0;                   /* cameras that were seen alone         */
    uint64_t decoded_for_nobody = 0; /* frames of a hidden camera, all added */

private:
    int hidden_channel() const { return (channel_ + 1) % kSixteen; }

    WallControl *wall_ = nullptr;
    int channel_ = 0;
    Clock::time_point began_at_;
    uint64_t decoded_before_ = 0;
};

TEST(NvrecSingleViews, EachOfSixteenCamerasIsSeenAloneAndTheOthersAreNotDecoded)
{
    WallOptions options;
    for (int channel = 0; channel < kSixteen; ++channel)
        options.inputs.emplace_back(std::string(NVREC_CLIPS) + "/colour" +
                                    std::to_string(channel % static_cast<int>(kColours)) +
                                    (channel % 2 ? ".h265" : ".h264"));
    options.feed.loop = true;
    options.feed.speed = 3; /* a key frame every 0.22 s */
    options.aspect.all = Aspect::kStretch;
    RunningWall wall(options);
    auto owned = std::make_unique<EachAlone>();
    EachAlone &each = *owned;
    wall.wall().add(std::move(owned));
    ASSERT_TRUE(wall.start());
    EXPECT_EQ(wall.wait_for_end(), 0);
    EXPECT_EQ(each.shown, kSixteen);
    /* What a decoder held when its camera was hidden may still come out. */
    EXPECT_LE(each.decoded_for_nobody, 3u * kSixteen);
}

} // namespace
