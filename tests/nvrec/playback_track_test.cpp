/* The recordings of one camera as a track: files that cannot be read, and where a track begins. */
#include <gtest/gtest.h>

#include "play/playback_track.h"

namespace
{

using namespace nvrec;

constexpr int64_t kSecond_us = 1'000'000;
constexpr int kPicturesPerSecond = 30;

std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* Clips of two seconds, ten seconds apart; the one in the middle is gone. */
TrackPlan with_one_gone()
{
    return {
        "yard",
        {{clip("h264.mp4"), 0}, {clip("deleted.mp4"), 10 * kSecond_us}, {clip("h265.mp4"), 20 * kSecond_us}}};
}

TEST(PlaybackTrack, GoesOnWithTheNextFileWhereOneIsGone)
{
    PlaybackTrack track(with_one_gone(), 0);
    ASSERT_TRUE(track.open()) << track.trouble();
    ASSERT_TRUE(track.seek(11 * kSecond_us)) << track.trouble();
    EXPECT_FALSE(track.at_end());
    EXPECT_EQ(track.next().due_us, 20 * kSecond_us);
    EXPECT_NE(track.trouble().find("deleted.mp4"), std::string::npos) << "it is said";
    ASSERT_TRUE(track.seek(kSecond_us));
    EXPECT_LE(track.next().due_us, kSecond_us);
}

TEST(PlaybackTrack, IsAtItsEndWhereNothingFollowsTheFileThatIsGone)
{
    TrackPlan plan = with_one_gone();
    plan.files.pop_back();
    PlaybackTrack track(plan, 0);
    ASSERT_TRUE(track.open());
    EXPECT_FALSE(track.seek(11 * kSecond_us));
    EXPECT_TRUE(track.at_end());
    EXPECT_TRUE(track.seek(0)) << "what is there is played all the same";
    EXPECT_EQ(track.next().due_us, 0);
}

TEST(PlaybackTrack, OpensTheFileOfThePlaceThatIsAskedFor)
{
    PlaybackTrack track(with_one_gone(), 0);
    ASSERT_TRUE(track.open(21 * kSecond_us));
    EXPECT_EQ(track.facts().codec, Codec::kH265);
    EXPECT_EQ(track.next().due_us, 20 * kSecond_us);
    EXPECT_TRUE(track.trouble().empty()) << "files before it are not looked at";
}

TEST(PlaybackTrack, OpensAnEarlierFileWhereNoLaterOneCanBeRead)
{
    TrackPlan plan = with_one_gone();
    plan.files.pop_back();
    PlaybackTrack track(plan, 0);
    ASSERT_TRUE(track.open(15 * kSecond_us));
    EXPECT_EQ(track.facts().codec, Codec::kH264);
}

/* Beside cameras that were recorded longer; of files that somebody puts side by side the last picture stays.
 */
TEST(PlaybackTrack, GoesDarkBehindTheEndOfWhatWasRecordedAtThatTimeOfDay)
{
    for (const bool dated : {true, false}) {
        PlaybackTrack track({"yard", {{clip("h264.mp4"), 0}}, dated}, 0);
        ASSERT_TRUE(track.open());
        ASSERT_TRUE(track.seek(0));
        int64_t last_us = 0;
        while (!track.at_end()) {
            last_us = track.next().due_us;
            track.deliver(false);
        }
        if (!dated) {
            EXPECT_EQ(track.dark_from_us(), INT64_MAX);
            continue;
        }
        EXPECT_GT(track.dark_from_us(), last_us);
        EXPECT_LE(track.dark_from_us(), last_us + kSecond_us);
        track.note_dark();
        EXPECT_EQ(track.dark_from_us(), INT64_MAX) << "once";
    }
}

TEST(PlaybackTrack, PlaysFilesOfTwoCodecsOneBehindTheOther)
{
    PlaybackTrack track({"yard", {{clip("h264.mp4"), 0}, {clip("h265.mp4"), 2 * kSecond_us}}}, 0);
    ASSERT_TRUE(track.open());
    ASSERT_EQ(track.facts().codec, Codec::kH264);
    ASSERT_FALSE(track.ends_before(3 * kSecond_us)) << "which reads through both";
    EXPECT_EQ(track.facts().codec, Codec::kH265);
    EXPECT_GE(track.next().due_us, 3 * kSecond_us);
    EXPECT_LT(track.next().due_us, 3 * kSecond_us + 2 * kSecond_us / kPicturesPerSecond);
}

} // namespace
