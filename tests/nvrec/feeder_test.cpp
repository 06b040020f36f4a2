/* The recorder's feeders: when the units of a network camera go on. */
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "camera/feeder.h"
#include "nvrec_run.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

#ifdef NVREC_RTSP_CAMERA

TEST(NvrecFeeder, WhatWaitedOnTheLineIsCaughtUpWithoutABurst)
{
    Process camera({NVREC_RTSP_CAMERA, std::string(NVREC_CLIPS) + "/h264.mp4", "h264"});
    int port = 0;
    ASSERT_EQ(std::sscanf(camera.read_line().c_str(), "port %d", &port), 1);
    FeedOptions options;
    options.frames = 50;
    Feeder feeder(0, "rtsp://127.0.0.1:" + std::to_string(port) + "/camera", options);
    ASSERT_TRUE(feeder.open()) << feeder.trouble();
    std::this_thread::sleep_for(1s); /* the camera goes on in real time, and nobody reads */

    std::vector<Clock::time_point> at;
    std::promise<void> ended;
    Feeder::Events events;
    events.sink = [&at](const AccessUnit &, const StreamFacts &) {
        at.push_back(Clock::now());
        return 0;
    };
    events.ended = [&ended](int) { ended.set_value(); };
    feeder.start(std::move(events));
    ASSERT_EQ(ended.get_future().wait_for(30s), std::future_status::ready);

    ASSERT_EQ(at.size(), options.frames);
    constexpr double kApart_ms = 1000.0 / 30 / 1.5; /* the clip's rate, one and a half times */
    constexpr double kRounding_ms = 2;              /* of the camera's clock */
    for (size_t i = 1; i < at.size(); ++i) {
        const double since_first_ms = std::chrono::duration<double, std::milli>(at[i] - at[0]).count();
        EXPECT_GE(since_first_ms, static_cast<double>(i) * kApart_ms - kRounding_ms) << "unit " << i;
    }
}

#else

TEST(NvrecFeeder, WhatWaitedOnTheLineIsCaughtUpWithoutABurst)
{
    GTEST_SKIP() << "built without libgstrtspserver-1.0-dev: no network camera to read";
}

#endif

} // namespace
