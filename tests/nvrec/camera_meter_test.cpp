/* Whether a camera's pictures come, how fast, and how well. */
#include <cstdint>
#include <optional>

#include <gtest/gtest.h>

#include "camera/camera_meter.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

constexpr auto kEvery = 40ms;

class NvrecCameraMeter : public testing::Test
{
protected:
    /* So many pictures at 25 a second, a key frame every 50, late by turns. */
    void send(int pictures, std::chrono::microseconds uneven = 0us)
    {
        for (int i = 0; i < pictures; ++i, ++sent_) {
            now_ += kEvery;
            meter_.arrived(now_ + (sent_ % 2 != 0 ? uneven : 0us), 5000, sent_ % 50 == 0,
                           now_.time_since_epoch().count() - 123'456'789);
        }
    }

    CameraStatus status()
    {
        CameraStatus status;
        meter_.tell(&status, now_);
        return status;
    }

    CameraMeter meter_;
    Clock::time_point now_ = Clock::now();
    int sent_ = 0;
};

TEST_F(NvrecCameraMeter, ACameraIsConnectingLiveSilentAndLiveAgain)
{
    EXPECT_EQ(status().state, CameraState::kConnecting);
    now_ += 1h;
    EXPECT_EQ(status().state, CameraState::kConnecting) << "nothing ever came";
    const Clock::time_point first = now_ + kEvery;
    send(100);
    EXPECT_EQ(status().state, CameraState::kLive);
    EXPECT_EQ(status().since, first);

    const Clock::time_point last = now_;
    now_ = last + kSilentAfter - 1us;
    EXPECT_EQ(status().state, CameraState::kLive);
    now_ = last + kSilentAfter;
    EXPECT_EQ(status().state, CameraState::kSilent);
    EXPECT_EQ(status().since, last);
    EXPECT_EQ(status().frame_rate, 0);
    meter_.begin_again(); /* connecting again is not a picture */
    EXPECT_EQ(status().state, CameraState::kSilent);

    send(1);
    EXPECT_EQ(status().state, CameraState::kLive);
    EXPECT_EQ(status().since, now_);
}

TEST_F(NvrecCameraMeter, APictureThatTheLibraryRefusesMakesItRefusedUntilAKeyFrameIsTaken)
{
    send(10);
    meter_.handed_on(true, false);
    EXPECT_EQ(status().state, CameraState::kRefused);
    meter_.handed_on(false, true);
    EXPECT_EQ(status().state, CameraState::kRefused) << "nothing can be shown without the key frame";
    meter_.handed_on(true, true);
    EXPECT_EQ(status().state, CameraState::kLive);
}

TEST_F(NvrecCameraMeter, TellsRatesAndDistances)
{
    send(200);
    EXPECT_NEAR(status().frame_rate, 25, 0.01);
    EXPECT_NEAR(status().bit_rate_bps, 25 * 5000 * 8, 1000);
    EXPECT_NEAR(status().key_distance_s, 2, 0.001);
    EXPECT_NEAR(status().jitter_ms, 0, 0.001);
    EXPECT_EQ(status().loss, 0);
    EXPECT_EQ(status().link_quality, 100);
}

TEST_F(NvrecCameraMeter, JitterAndLossLowerTheLinksQuality)
{
    send(200, 30ms);
    EXPECT_NEAR(status().jitter_ms, 30, 1);
    const int uneven = status().link_quality;
    EXPECT_LT(uneven, 95);
    EXPECT_GT(uneven, 80);
    meter_.missed(40); /* of 800 packets and 40 */
    EXPECT_NEAR(status().loss, 40.0 / 840, 0.01);
    EXPECT_LT(status().link_quality, uneven - 20);
    meter_.missed(1'000'000);
    EXPECT_GE(status().link_quality, 1);
}

} // namespace
