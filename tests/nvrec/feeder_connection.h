/* feeder_connection.h - a network camera in software, and what a feeder makes of it. */
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "camera/feeder.h"
#include "nvrec_run.h"

#ifdef NVREC_RTSP_CAMERA

namespace nvrec
{

/* A camera of 60 pictures at 30 a second, and what a feeder makes of it. */
class NvrecFeederConnection : public testing::Test
{
protected:
    void serve(std::vector<std::string> options, const std::string &file = "h264.mp4",
               const std::string &codec = "h264")
    {
        options.insert(options.begin(), NVREC_RTSP_CAMERA);
        options.insert(options.end(), {std::string(NVREC_CLIPS) + "/" + file, codec});
        camera_ = std::make_unique<Process>(options);
        int port = 0;
        ASSERT_EQ(std::sscanf(camera_->read_line().c_str(), "port %d", &port), 1);
        source_ = CameraSource("rtsp://127.0.0.1:" + std::to_string(port) + "/camera");
    }

    /* Feed so many pictures. @param at_each  called with their number, on the feeder's thread */
    void feed(uint64_t frames, const std::function<void(size_t)> &at_each = {})
    {
        options_.frames = frames;
        feeder_ = std::make_unique<Feeder>(0, source_, options_);
        ASSERT_TRUE(feeder_->open()) << feeder_->trouble();
        std::promise<void> ended;
        Feeder::Events events = events_;
        events.sink = [this, at_each](const AccessUnit &unit, const StreamFacts &) {
            units_.push_back(unit);
            if (at_each) at_each(units_.size());
            return 0;
        };
        events.trouble = [this](int, const std::string &line) { troubles_ += line + "\n"; };
        events.ended = [&ended](int) { ended.set_value(); };
        feeder_->start(std::move(events));
        ASSERT_EQ(ended.get_future().wait_for(std::chrono::seconds(40)), std::future_status::ready);
    }

    /* Distances of times of day and of due times alike. */
    void expect_even_distances(size_t from, size_t to)
    {
        constexpr double kDistance_us = 1e6 / 30;
        constexpr double kRounding_us = 500; /* the camera counts in milliseconds, and is followed */
        for (size_t i = from + 1; i < to; ++i) {
            EXPECT_NEAR(static_cast<double>(units_[i].due_us - units_[i - 1].due_us), kDistance_us,
                        kRounding_us)
                << "unit " << i;
            EXPECT_NEAR(static_cast<double>(units_[i].wall_us - units_[i - 1].wall_us), kDistance_us,
                        kRounding_us)
                << "unit " << i;
        }
    }

    static double seconds_from_now(int64_t wall_us)
    {
        const auto now_us =
            std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count();
        return static_cast<double>(wall_us - now_us) / 1e6;
    }

    std::unique_ptr<Process> camera_;
    CameraSource source_;
    FeedOptions options_;
    Feeder::Events events_; /* beside those that feed() takes */
    std::unique_ptr<Feeder> feeder_;
    std::vector<AccessUnit> units_;
    std::string troubles_; /* the feeder's thread's until it has ended */
};

} // namespace nvrec

#endif
