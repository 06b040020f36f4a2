/* "nvrec play --dir" of cameras that change, come, go, and are many. */
#include "nvrhal/limits.h"
#include "play_recordings.h"

namespace
{

using namespace nvrec_test;
using stamp::Stamp;

/* A camera was set up anew: its codec is another one from then on. */
TEST_F(PlayRecordings, OfAnotherCodecThanTheOldestPlayFromTheirTimeOn)
{
    put("140500");
    put("140505", 0, kOtherCodec);
    ASSERT_EQ(play_at("14:05:07", {"--do", "0:pause,0.8:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 2 * kRate}));
}

TEST_F(PlayRecordings, OfAnotherCodecFollowTheOnesBefore)
{
    put("140500", 0, kOtherCodec);
    put("140505");
    put("140510", 0, kOtherCodec);
    ASSERT_EQ(play_at("14:05:09", {"--speed", "2"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, kLast})) << "the end of the last one";
}

TEST_F(PlayRecordings, OfAnotherCodecAreGoneToAndBack)
{
    put("140500");
    put("140505", 0, kOtherCodec);
    ASSERT_EQ(play_at("14:05:01", {"--do", "0:pause,0.4:skip 7,1.4:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 3 * kRate}));
    ASSERT_EQ(play_at("14:05:07", {"--do", "0:pause,0.4:skip -5,1.4:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kChannel, 2 * kRate}));
}

TEST_F(PlayRecordings, OfAnotherCodecStayAloneOnTheScreen)
{
    put("140500");
    put("140505", 0, kOtherCodec);
    put("140500", 1);
    layout_ = "2x2";
    ASSERT_EQ(play_at("14:05:01", {"--do", "0:pause,0.3:enlarge 0,0.9:skip 7,2.2:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 3 * kRate}));
}

constexpr int kPage = NVRHAL_PLAYBACK_CHANNELS; /* cameras of one */

class PlayPages : public PlayRecordings
{
protected:
    /* The cameras of the first pages. */
    void put_pages(int pages, const std::string &time)
    {
        for (int channel = 0; channel < pages * kPage; ++channel)
            put(time, channel);
    }
};

TEST_F(PlayPages, BeginWithTheFirstThatHasSomethingFromTheTimeOn)
{
    put_pages(1, "140500");
    put("140600", kPage, kOtherCodec);
    ASSERT_EQ(play_at("14:05:30", {"--do", "0:pause,0.8:end"}), 0) << words_;
    EXPECT_NE(words_.find("playing from 2026-11-21 14:06:00 +0100"), std::string::npos) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 0}));
}

TEST_F(PlayPages, FollowWhereTheOneBeforeHasNothingMore)
{
    put_pages(1, "140500");
    put("140504", kPage, kOtherCodec);
    ASSERT_EQ(play_at("14:05:04", {"--speed", "2"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, kLast})) << "of the ninth camera";
}

TEST_F(PlayPages, AreAsManyAsADirectoryHasCameras)
{
    put_pages(2, "140500");
    put("140500", 2 * kPage, kOtherCodec);
    ASSERT_EQ(play_at("14:05:02", {"--do", "0:pause,0.4:page 3,1.6:end"}), 0) << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 2 * kRate})) << "the seventeenth camera";
}

TEST_F(PlayPages, LeaveCamerasOutThatHaveNothingMoreWhereThereAreMany)
{
    put_pages(2, "140500");
    put("150000", 2 * kPage, kOtherCodec);
    ASSERT_EQ(play_at("15:00:02", {"--do", "0:pause,0.8:end"}), 0) << words_;
    EXPECT_NE(words_.find("nothing is recorded of " + std::to_string(2 * kPage) +
                          " cameras at 2026-11-21 15:00:02 +0100 or later"),
              std::string::npos)
        << words_;
    EXPECT_EQ(seen(), (Stamp{kOtherChannel, 2 * kRate}));
}

TEST_F(PlayPages, OfMoreCamerasThanCanBePlayedAreChosenByName)
{
    for (int channel = 0; channel < 65; ++channel)
        put("140500", channel);
    EXPECT_EQ(play_at("14:05:02", {"--do", "0.2:end"}), 2);
    EXPECT_NE(words_.find("recordings of 65 cameras; at most 64"), std::string::npos) << words_;
    EXPECT_NE(words_.find("--camera"), std::string::npos) << words_;
    EXPECT_EQ(play_at("14:05:02", {"--camera", "64", "--language", "zh", "--do", "0.2:end"}), 0) << words_;
}

} // namespace
