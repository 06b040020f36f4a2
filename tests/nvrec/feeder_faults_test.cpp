/* The recorder's feeders: network cameras of which something works and something else does not. */
#include <string>

#include <gtest/gtest.h>

#include "feeder_line.h"

#ifdef NVREC_RTSP_CAMERA

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

TEST_F(NvrecFeederLine, SoundAloneKeepsNoLineAlive)
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

TEST_F(NvrecFeederLine, AStreamWithoutKeyFramesIsGivenUp)
{
    serve({"--drop-keys", "1000"}, "talking.mov");
    options_.key_limit = 2s;
    Feeder feeder(0, source_, options_);
    EXPECT_FALSE(feeder.open());
    EXPECT_EQ(feeder.trouble(), "no key frame came in 2 s");
    EXPECT_FALSE(feeder.opened());
}

} // namespace

#endif
