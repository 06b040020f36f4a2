/* "nvrec play" of what a recorder wrote: reordered pictures, file after file, gaps, times of day. */
#include "play_recordings.h"

namespace
{

using namespace nvrec_test;
using stamp::Stamp;

TEST_F(PlayRecordings, WithReorderedPicturesShowsTheOneThatASeekInAPauseAskedFor)
{
    ASSERT_EQ(play({clip("play_reordered.mp4"), "--do", "0.3:pause,0.6:seek 2.5,1.5:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kChannel, 2 * kRate}));
}

TEST_F(PlayRecordings, WithReorderedPicturesShowsTheLastOneAtTheEnd)
{
    ASSERT_EQ(play({clip("play_reordered.mp4"), "--seek", "4"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kChannel, kLast}));
}

TEST_F(PlayRecordings, WithReorderedPicturesShowsTheKeyFrameOfItsTimeAtFourTimes)
{
    /* Key frames are due every quarter second: at 0.9 s that of the fourth second stands there, on a busy
     * machine that before it. */
    ASSERT_EQ(play({clip("play_reordered.mp4"), "--speed", "4", "--do", "0.9:pause,1.1:end"}), 0) << words_;
    const auto stamp = seen();
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->frame % kRate, 0u);
    EXPECT_GE(stamp->frame, 2 * kRate);
    EXPECT_LE(stamp->frame, 4 * kRate);
}

TEST_F(PlayRecordings, SaysThatASeekGoesBeyondTheEnd)
{
    EXPECT_EQ(play({clip("play_reordered.mp4"), "--seek", "90"}), 2);
    EXPECT_NE(words_.find("--seek 90: the recordings end before that"), std::string::npos) << words_;
    EXPECT_EQ(play({clip("play_0.h264"), "--do", "0.2:pause,0.4:seek 7,0.8:end"}), 2);
    EXPECT_NE(words_.find("seek 7: the recordings end before that"), std::string::npos) << words_;
}

TEST_F(PlayRecordings, OfOneCameraAreOnePictureOneBehindTheOther)
{
    put("140500");
    put("140505");
    ASSERT_EQ(
        play({scratch_.file("rec/ch00-main-20261121-140505.mp4"),
              scratch_.file("rec/ch00-main-20261121-140500.mp4"), "--do", "0:pause,0.2:seek 7,0.8:end"}),
        0)
        << words_;
    EXPECT_EQ(seen(), (Stamp{kChannel, 2 * kRate})) << "seven seconds are two of the second file";
    EXPECT_NE(words_.find("and 1 more"), std::string::npos) << words_;
}

TEST_F(PlayRecordings, BeginAtATimeOfDay)
{
    put("140500");
    put("140515");
    ASSERT_EQ(play({"--dir", scratch_.file("rec"), "--at", "2026-11-21T14:05:17", "--do", "0:pause,0.8:end"}),
              0)
        << words_;
    EXPECT_EQ(seen(), (Stamp{kChannel, 2 * kRate}));
}

TEST_F(PlayRecordings, ShowAGapAsAGapAndGoOnBehindIt)
{
    put("140500");
    put("140530");
    put("140500", 1);
    ASSERT_EQ(play({"--dir", scratch_.file("rec"), "--camera", "0", "--at", "2026-11-21T14:05:04", "--do",
                    "2.9:end"}),
              0)
        << words_;
    EXPECT_FALSE(seen()) << "nothing was recorded a while after the file's end";
    ASSERT_EQ(play({"--dir", scratch_.file("rec"), "--camera", "0", "--at", "2026-11-21T14:05:04", "--do",
                    "7:end"}),
              0)
        << words_;
    EXPECT_NE(words_.find("nothing was recorded until 2026-11-21 14:05:30 +0100"), std::string::npos)
        << words_;
    EXPECT_TRUE(seen()) << "what comes next";
}

TEST_F(PlayRecordings, InADirectorySayWhatIsWrong)
{
    put("140500");
    const std::string rec = scratch_.file("rec");
    EXPECT_EQ(play({"--dir", rec, "--at", "2026-11-21T15:00"}), 3);
    EXPECT_NE(words_.find("nothing is recorded at 2026-11-21 15:00:00 +0100 or later"), std::string::npos);
    EXPECT_EQ(play({"--dir", rec, "--at", "noon"}), 2);
    EXPECT_NE(words_.find("\"noon\""), std::string::npos);
    EXPECT_EQ(play({"--dir", rec, "--camera", "gate"}), 2);
    EXPECT_NE(words_.find("no camera \"gate\""), std::string::npos);
    EXPECT_EQ(play({"--dir", rec, clip("play_0.h264")}), 2);
    EXPECT_EQ(play({}), 2);
    EXPECT_EQ(play({"--dir", rec, "--at", "2026-11-21T13:00", "--do", "0:pause,0.5:end"}), 0) << words_;
    EXPECT_NE(words_.find("playing from 2026-11-21 14:05:00 +0100"), std::string::npos);
    EXPECT_EQ(seen(), (Stamp{kChannel, 0}));
}

} // namespace
