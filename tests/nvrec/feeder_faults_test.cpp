/* The recorder's feeders: network cameras of which something works and something else does not. */
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <string>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

#include "feeder_connection.h"
#include "loopback_port.h"

#ifdef NVREC_RTSP_CAMERA

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

TEST_F(NvrecFeederConnection, SoundAloneKeepsNoConnectionAlive)
{
    serve({"--sound", "--freeze", "40"}, "talking.mov");
    options_.sound_channels = 1;
    size_t blocks = 0;
    events_.sound = [&blocks](int, const SoundBlock &) { ++blocks; };
    feed(60); /* the last 20 are of a second session */
    ASSERT_EQ(units_.size(), 60u);
    EXPECT_EQ(feeder_->counters().reconnects, 1u);
    EXPECT_NE(troubles_.find("no picture came for ten seconds"), std::string::npos) << troubles_;
    EXPECT_GE(blocks, 40u) << "of the 2 seconds with pictures";
}

TEST_F(NvrecFeederConnection, AStreamWithoutKeyFramesIsGivenUp)
{
    serve({"--drop-keys", "1000"}, "talking.mov");
    options_.key_limit = 2s;
    Feeder feeder(0, source_, options_);
    EXPECT_FALSE(feeder.open());
    EXPECT_EQ(feeder.trouble(), "no key frame came in 2 s");
    EXPECT_FALSE(feeder.opened());
}

TEST_F(NvrecFeederConnection, AConnectionThatIsOpenedAgainShowsNothingBeforeAKeyFrame)
{
    serve({"--drop-keys", "1"}); /* the file's at 20 and 40 of its 60 pictures are left */
    bool waited = false;
    size_t behind = 0; /* pictures of the second session that were not shown */
    events_.unit = [&](int, const AccessUnit &unit, const StreamFacts &) {
        if (feeder_->counters().reconnects == 0 || waited) return;
        waited = unit.key;
        behind += !unit.key;
        EXPECT_TRUE(feeder_->status().waits_for_key) << "picture " << behind;
    };
    feed(70);
    ASSERT_GE(behind, 5u) << "the camera sent its key frame first";
    EXPECT_TRUE(waited);
    ASSERT_EQ(units_.size(), 70 - behind);
    EXPECT_FALSE(units_[39].key);
    EXPECT_TRUE(units_[40].key) << "the first one of the second session";
    EXPECT_FALSE(feeder_->status().waits_for_key);
    EXPECT_EQ(feeder_->counters().sent, 70 - behind);
}

TEST_F(NvrecFeederConnection, AMainStreamThatFailsBehindItsSubStreamSaysWhy)
{
    serve({"--sub", std::string(NVREC_CLIPS) + "/talking.mov"});
    const LoopbackPort silent; /* takes connections and never says a word */
    source_.sub_address = source_.address;
    source_.sub_address.replace(source_.sub_address.rfind("/camera"), std::string::npos, "/sub");
    source_.address = "rtsp://127.0.0.1:" + std::to_string(silent.number()) + "/camera";
    options_.open_limit = 4s;
    Feeder feeder(0, source_, options_);
    std::promise<std::string> told;
    std::atomic<bool> once = false, empty_unit = false, sub_was_first = false;
    events_.unit = [&](int, const AccessUnit &unit, const StreamFacts &) { empty_unit = unit.bytes.empty(); };
    events_.trouble = [&](int, const std::string &line) {
        if (line.find("its sub stream") != std::string::npos || once.exchange(true)) return;
        sub_was_first = feeder.opened();
        told.set_value(line);
    };
    feeder.want_stream(StreamChoice::kSub);
    feeder.start(events_);
    std::future<std::string> line = told.get_future();
    ASSERT_EQ(line.wait_for(20s), std::future_status::ready);
    EXPECT_NE(line.get().find("no answer in time"), std::string::npos);
    std::this_thread::sleep_for(200ms);
    EXPECT_TRUE(sub_was_first);
    EXPECT_FALSE(empty_unit);
    feeder.ask_to_stop();
    feeder.join();
}

/* As a change of the configuration does it, which tells no fault of the camera. */
TEST_F(NvrecFeederConnection, AnOpeningThatIsInterruptedTellsNoFault)
{
    serve({"--drop-keys", "1000"}, "talking.mov");
    Feeder feeder(0, source_, options_);
    std::future<bool> opened = std::async(std::launch::async, [&feeder] { return feeder.open(); });
    std::this_thread::sleep_for(1s);
    feeder.ask_to_stop();
    EXPECT_FALSE(opened.get());
    feeder.start(events_);
    feeder.join();
    EXPECT_EQ(feeder.trouble(), "");
}

size_t open_sockets()
{
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone; /* the directory's own */
        count += std::filesystem::read_symlink(entry, gone).string().rfind("socket:", 0) == 0;
    }
    return count;
}

TEST_F(NvrecFeederConnection, ASubStreamThatIsNoLongerWantedKeepsNoConnection)
{
    serve({});
    const size_t before = open_sockets();
    Feeder feeder(0, source_, options_);
    std::promise<void> came;
    std::atomic<bool> once = false;
    events_.sink = [&](const AccessUnit &, const StreamFacts &) {
        if (!once.exchange(true)) came.set_value();
        return 0;
    };
    feeder.start(events_);
    ASSERT_EQ(came.get_future().wait_for(20s), std::future_status::ready);
    EXPECT_GT(open_sockets(), before);
    feeder.ask_to_stop();
    feeder.join();
    EXPECT_EQ(open_sockets(), before);
    std::future<std::string> told = std::async(std::launch::async, [this] { return camera_->read_line(); });
    if (told.wait_for(5s) != std::future_status::ready) camera_->signal(SIGKILL);
    EXPECT_EQ(told.get(), "session ended") << "cameras have room for few sessions";
}

} // namespace

#endif
