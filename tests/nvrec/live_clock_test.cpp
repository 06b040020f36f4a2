/* When pictures of network cameras were taken, whatever their connection and their own clock do. */
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "camera/live_clock.h"

namespace
{

using nvrec::LiveClock;

constexpr int64_t kPicture_us = 40'000;
constexpr int64_t kSecond_us = 1'000'000;
constexpr int64_t kHour_us = 3600 * kSecond_us;
constexpr int64_t kAgree_us = 200'000;

/* A camera of 25 frames a second on a connection; both may be made to misbehave. */
class Camera
{
public:
    explicit Camera(LiveClock &clock) : clock_(clock)
    {
        clock_.set_stream(25, 0);
        connect();
    }

    void connect() { clock_.begin({}); }

    /* The next picture, taken one frame later, on its way for so long. */
    LiveClock::Stamp send(int64_t on_the_way_us = 0)
    {
        taken_us += kPicture_us;
        const int64_t own_us = taken_us + own_clock_us;
        return clock_.stamp({{.pts_us = own_us, .dts_us = {}}, taken_us + on_the_way_us});
    }

    /* The same. @return how far its time lies from the right one */
    double send_and_compare(int64_t on_the_way_us = 0)
    {
        const int64_t at_us = send(on_the_way_us).at_us;
        return static_cast<double>(at_us - taken_us);
    }

    /* Nothing is taken, and time goes by. */
    void pause(int64_t time_us) { taken_us += time_us; }

    int64_t taken_us = 5 * kHour_us; /* of the last picture, on the recorder's monotonic clock */
    int64_t own_clock_us = -4 * kHour_us;

private:
    LiveClock &clock_;
};

TEST(NvrecLiveClock, DistancesAreTheCamerasWhileItsPicturesArriveUnevenly)
{
    LiveClock clock;
    Camera camera(clock);
    std::mt19937 random(7);
    std::uniform_int_distribution<int64_t> delay_us(0, 150'000);
    int64_t last_us = camera.send(0).due_us;
    for (int i = 0; i < 2000; ++i) {
        const int64_t due_us = camera.send(delay_us(random)).due_us;
        EXPECT_NEAR(static_cast<double>(due_us - last_us), kPicture_us, kPicture_us / 100.0)
            << "picture " << i;
        last_us = due_us;
    }
}

TEST(NvrecLiveClock, PicturesThatWaitedOnAStalledConnectionKeepTheirTimes)
{
    LiveClock clock;
    Camera camera(clock);
    for (int i = 0; i < 100; ++i)
        camera.send();
    constexpr int64_t kStall_us = 35 * kSecond_us;
    const int64_t first_us = camera.taken_us;
    for (int64_t passed_us = 0; passed_us < kStall_us; passed_us += kPicture_us) {
        /* All of them arrive when the stall ends, one behind the other in half a millisecond. */
        const int64_t waited_us = kStall_us - passed_us + passed_us / 80;
        EXPECT_NEAR(camera.send_and_compare(waited_us), 0, 1000);
    }
    EXPECT_EQ(camera.taken_us - first_us, kStall_us);
    for (int i = 0; i < 100; ++i)
        EXPECT_NEAR(camera.send_and_compare(), 0, kAgree_us);
}

TEST(NvrecLiveClock, ALatePictureRenewsNothing)
{
    LiveClock clock;
    Camera camera(clock);
    for (int i = 0; i < 100; ++i)
        camera.send();
    const LiveClock::Stamp late =
        camera.send(10 * kSecond_us); /* given out when the connection was given up */
    EXPECT_EQ(late.at_us, camera.taken_us);
    camera.pause(35 * kSecond_us);
    camera.own_clock_us = 12345 - camera.taken_us; /* another session counts from elsewhere */
    camera.connect();
    const LiveClock::Stamp back = camera.send();
    EXPECT_EQ(back.at_us - late.at_us, 35 * kSecond_us + kPicture_us);
    EXPECT_EQ(back.due_us - late.due_us, 35 * kSecond_us + kPicture_us);
}

TEST(NvrecLiveClock, AClockThatIsSetMovesNoPicture)
{
    for (const int64_t set_us : {-kHour_us, kHour_us, -10 * kSecond_us, 5 * kSecond_us}) {
        LiveClock clock;
        Camera camera(clock);
        for (int i = 0; i < 100; ++i)
            camera.send();
        camera.own_clock_us += set_us;
        LiveClock::Stamp stamp = camera.send();
        EXPECT_NEAR(static_cast<double>(stamp.jumped_us), static_cast<double>(set_us), kAgree_us);
        for (int i = 0; i < 100; ++i) {
            const LiveClock::Stamp next = camera.send();
            EXPECT_EQ(next.due_us - stamp.due_us, kPicture_us) << "set by " << set_us << ", picture " << i;
            EXPECT_NEAR(static_cast<double>(next.at_us), static_cast<double>(camera.taken_us), 1000);
            EXPECT_EQ(next.jumped_us, 0);
            stamp = next;
        }
    }
}

TEST(NvrecLiveClock, ACameraThatStoodStillGoesOnAtItsRightTime)
{
    LiveClock clock;
    Camera camera(clock);
    for (int i = 0; i < 100; ++i)
        camera.send();
    camera.pause(10 * kSecond_us);
    camera.own_clock_us -= 10 * kSecond_us; /* it does not know that it stood still */
    for (int i = 0; i < 15; ++i)
        camera.send();
    for (int i = 0; i < 100; ++i)
        EXPECT_NEAR(camera.send_and_compare(), 0, 1000);
}

TEST(NvrecLiveClock, AClockThatRunsSlowIsFollowed)
{
    constexpr int64_t kSlow_ppm = 500;
    LiveClock clock;
    Camera camera(clock);
    int64_t last_us = camera.send().due_us;
    for (int i = 0; i < 25 * 3600; ++i) {
        camera.own_clock_us -= kPicture_us * kSlow_ppm / 1'000'000;
        const LiveClock::Stamp stamp = camera.send();
        ASSERT_NEAR(static_cast<double>(stamp.at_us), static_cast<double>(camera.taken_us), 20'000);
        ASSERT_NEAR(static_cast<double>(stamp.due_us - last_us), kPicture_us, kPicture_us / 100.0);
        last_us = stamp.due_us;
    }
}

TEST(NvrecLiveClock, PicturesThatCameWhileTheConnectionWasOpenedHaveTheTimeAtWhichTheyCame)
{
    /* A second of pictures waited; the one behind them was waited for. */
    constexpr int64_t kNow_us = 9 * kHour_us;
    std::vector<LiveClock::Arrived> first;
    for (int64_t i = 0; i <= 25; ++i)
        first.push_back({{.pts_us = i * kPicture_us, .dts_us = {}}, kNow_us});
    LiveClock clock;
    clock.set_stream(25, 0);
    clock.begin(first);
    for (int64_t i = 0; i <= 25; ++i)
        EXPECT_EQ(clock.stamp(first[static_cast<size_t>(i)]).at_us, kNow_us - (25 - i) * kPicture_us);
}

TEST(NvrecLiveClock, ASessionsFirstPictureWithoutATimeIsShownOnePictureBeforeTheOthers)
{
    constexpr int64_t kNow_us = 9 * kHour_us;
    std::vector<LiveClock::Arrived> first = {{{}, kNow_us}};
    for (const int64_t shown : {4, 2, 1, 3})
        first.push_back({{.pts_us = shown * kPicture_us, .dts_us = {}}, kNow_us});
    LiveClock clock;
    clock.set_stream(25, 2);
    for (int session = 0; session < 2; ++session) {
        for (LiveClock::Arrived &unit : first)
            unit.arrived_us += 60 * kSecond_us;
        clock.begin(first);
        std::vector<int64_t> pts_us;
        for (const LiveClock::Arrived &unit : first)
            pts_us.push_back(clock.stamp(unit).pts_us);
        EXPECT_EQ(pts_us[3] - pts_us[0], kPicture_us);
        EXPECT_EQ(pts_us[1] - pts_us[0], 4 * kPicture_us);
    }
}

TEST(NvrecLiveClock, ReorderedPicturesAreShownAtTheCamerasDistancesFromTheFirstOn)
{
    LiveClock clock;
    clock.set_stream(25, 1);
    clock.begin({});
    const std::vector<int64_t> shown = {0, 3, 1, 2, 6, 4, 5, 9, 7, 8}; /* in the order of decoding */
    int64_t last_due_us = -1;
    std::vector<int64_t> pts_us(shown.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        const int64_t arrived_us = kHour_us + static_cast<int64_t>(i) * kPicture_us;
        const LiveClock::Stamp stamp =
            clock.stamp({{.pts_us = 777 + shown[i] * kPicture_us, .dts_us = {}}, arrived_us});
        EXPECT_GT(stamp.due_us, last_due_us);
        EXPECT_GE(stamp.pts_us, stamp.due_us);
        last_due_us = stamp.due_us;
        pts_us[static_cast<size_t>(shown[i])] = stamp.pts_us;
    }
    for (size_t i = 1; i < pts_us.size(); ++i)
        EXPECT_EQ(pts_us[i] - pts_us[i - 1], kPicture_us) << "picture " << i;
}

} // namespace
