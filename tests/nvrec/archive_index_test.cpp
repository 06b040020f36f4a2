/* The index of recordings: what is put in is found, gaps and pins count, damage loses little. */
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "archive/archive_reader.h"
#include "archive/index.h"
#include "archive/retention.h"
#include "archive_days.h"
#include "nvrec_run.h"

namespace
{

using namespace nvrec;
using archive_days::kHour_us;
using archive_days::kSecond_us;

SegmentRow segment(int channel, const std::string &camera, const std::string &file, int64_t from_us,
                   int64_t to_us)
{
    return {channel, camera, "main", "/elsewhere/" + file, from_us, to_us, 1000, true};
}

class RecordingIndex : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(index_.open(scratch_.path()), ""); }

    IndexQuery of(int channel, const std::string &name)
    {
        IndexQuery query;
        query.cameras = {index_.camera_number(channel, name)};
        return query;
    }

    ScratchDirectory scratch_;
    Index index_;
};

TEST_F(RecordingIndex, IsMadeForItsUserAndGroupAlone)
{
    EXPECT_TRUE(index_.made_anew());
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "a.mp4", 1, 2)));
    for (const char *name : {"nvrec.sqlite", "nvrec.sqlite-wal", "nvrec.sqlite-shm"}) {
        struct stat facts = {};
        ASSERT_EQ(stat(scratch_.file(name).c_str(), &facts), 0) << name;
        EXPECT_EQ(facts.st_mode & 0777, 0640u) << name;
    }
}

TEST_F(RecordingIndex, FindsTheSegmentsOfACameraInASpan)
{
    for (int hour = 0; hour < 5; ++hour) {
        const std::string number = std::to_string(hour);
        ASSERT_TRUE(
            index_.put_segment(segment(0, "yard", "y" + number, hour * kHour_us, (hour + 1) * kHour_us)));
        ASSERT_TRUE(
            index_.put_segment(segment(1, "gate", "g" + number, hour * kHour_us, (hour + 1) * kHour_us)));
    }
    IndexQuery query = of(0, "yard");
    query.span = {2 * kHour_us, 3 * kHour_us + 1};
    const auto rows = index_.segments(query);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].path, scratch_.file("y2"));
    EXPECT_EQ(rows[0].camera, "yard");
    EXPECT_EQ(rows[1].path, scratch_.file("y3"));
    EXPECT_EQ(index_.segment_before(query, 3 * kHour_us)->path, scratch_.file("y2"));
    EXPECT_EQ(index_.segment_after(query, 3 * kHour_us)->path, scratch_.file("y3"));
    EXPECT_FALSE(index_.segment_after(query, 4 * kHour_us + 1));
    EXPECT_EQ(index_.total_bytes(), 10'000);
}

TEST_F(RecordingIndex, GivesRecordingsFromBeforeACameraHadANameToThatCamera)
{
    ASSERT_TRUE(index_.put_segment(segment(3, "", "old", 0, 10)));
    EXPECT_EQ(index_.cameras().front().shown(), "channel 3");
    ASSERT_TRUE(index_.put_segment(segment(3, "yard", "new", 10, 20)));
    ASSERT_EQ(index_.cameras().size(), 1u);
    EXPECT_EQ(index_.segments(of(3, "yard")).size(), 2u);
    ASSERT_TRUE(index_.put_segment(segment(3, "gate", "newer", 20, 30))) << "another camera took its place";
    EXPECT_EQ(index_.segments(of(3, "yard")).size(), 2u);
}

TEST_F(RecordingIndex, AFileThatIsFinishedMayBeShorterThanItWas)
{
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "a.mp4", 10 * kHour_us, 10 * kHour_us)));
    const auto end = [&] { return index_.segments(of(0, "yard")).at(0).to_us; };
    ASSERT_TRUE(index_.grow_segment("a.mp4", 12 * kHour_us, 2000, false));
    ASSERT_TRUE(index_.grow_segment("a.mp4", 11 * kHour_us, 2000, false));
    EXPECT_EQ(end(), 12 * kHour_us) << "while it grows it only grows";
    ASSERT_TRUE(index_.grow_segment("a.mp4", 11 * kHour_us, 1000, true));
    EXPECT_EQ(end(), 11 * kHour_us) << "what the disk did not keep was cut off";
    ASSERT_TRUE(index_.grow_segment("a.mp4", 0, 0, true));
    EXPECT_EQ(end(), 10 * kHour_us) << "and never before its beginning";
}

TEST_F(RecordingIndex, TakesGapsOutOfWhatIsRecorded)
{
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "a", 0, 100 * kSecond_us)));
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "b", 101 * kSecond_us, 200 * kSecond_us)));
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "c", 300 * kSecond_us, 400 * kSecond_us)));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 50 * kSecond_us, 60 * kSecond_us, "no video"}));
    const std::vector<TimeSpan> expected = {
        {0, 50 * kSecond_us}, {60 * kSecond_us, 200 * kSecond_us}, {300 * kSecond_us, 400 * kSecond_us}};
    EXPECT_EQ(index_.recorded(of(0, "yard"), 2 * kSecond_us), expected);
}

/* A clock that was an hour wrong, forward or back, and the gap that recorders used to enter then. */
TEST_F(RecordingIndex, OfAGapOutsideOfAFileTakesNothingOutOfIt)
{
    for (const int64_t wrong_us : {kHour_us, -kHour_us}) {
        SCOPED_TRACE(wrong_us);
        const std::string camera = wrong_us > 0 ? "yard" : "gate";
        const int64_t at = 10 * kHour_us, minute_us = 60 * kSecond_us;
        ASSERT_TRUE(index_.put_segment(segment(0, camera, camera + "1", at - 90 * minute_us, at)));
        ASSERT_TRUE(
            index_.put_segment(segment(0, camera, camera + "2", at + wrong_us, at + wrong_us + minute_us)));
        ASSERT_TRUE(
            index_.put_segment(segment(0, camera, camera + "3", at + minute_us, at + 90 * minute_us)));
        const int64_t set_at = wrong_us > 0 ? at : at + minute_us;
        ASSERT_TRUE(index_.put_gap({0, camera, "main", std::min(set_at, set_at + wrong_us),
                                    std::max(set_at, set_at + wrong_us), "no video"}));
        const std::vector<TimeSpan> expected = {{at - 90 * minute_us, at},
                                                {at + minute_us, at + 90 * minute_us}};
        EXPECT_EQ(index_.recorded(of(0, camera), 2 * kSecond_us), expected);
        for (const int64_t found_us : {at - minute_us / 2, at - 30 * minute_us, at + 30 * minute_us})
            EXPECT_TRUE(find_place(index_, of(0, camera), found_us).segment) << found_us;
    }
}

TEST_F(RecordingIndex, AFileThatHoldsTheTimeOfAnothersHoleIsFound)
{
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "a", 0, 100 * kSecond_us)));
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "b", 10 * kSecond_us, 90 * kSecond_us)));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 5 * kSecond_us, 95 * kSecond_us, "lost"}));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 40 * kSecond_us, 50 * kSecond_us, "no video"}));
    const std::vector<TimeSpan> expected = {{0, 5 * kSecond_us},
                                            {10 * kSecond_us, 40 * kSecond_us},
                                            {50 * kSecond_us, 90 * kSecond_us},
                                            {95 * kSecond_us, 100 * kSecond_us}};
    EXPECT_EQ(index_.recorded(of(0, "yard"), 2 * kSecond_us), expected);
    const Place place = find_place(index_, of(0, "yard"), 30 * kSecond_us);
    ASSERT_TRUE(place.segment);
    EXPECT_EQ(place.segment->from_us, 10 * kSecond_us);
    EXPECT_FALSE(find_place(index_, of(0, "yard"), 45 * kSecond_us).segment);
}

TEST_F(RecordingIndex, AGapThatGoesOnForTheSameReasonIsOne)
{
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 10, 20, "the disk is full"}));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 20, 30, "the disk is full"}));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 20, 30, "the disk is full"}));
    ASSERT_TRUE(index_.put_gap({0, "yard", "main", 30, 40, "no video"}));
    ASSERT_TRUE(index_.put_gap({0, "yard", "network", 30, 40, "the disk is full"}));
    ASSERT_TRUE(index_.put_gap({0, "gate", "main", 30, 40, "the disk is full"}));
    const auto gaps = index_.gaps(of(0, "yard"));
    ASSERT_EQ(gaps.size(), 2u);
    EXPECT_EQ(gaps[0].from_us, 10);
    EXPECT_EQ(gaps[0].to_us, 30);
}

TEST_F(RecordingIndex, UnpinsPartOfAPin)
{
    const int64_t yard = index_.camera_number(0, "yard");
    ASSERT_NE(index_.put_pin(yard, {0, 100}), 0);
    EXPECT_EQ(index_.remove_pins(yard, {40, 60}), 1);
    const auto pins = index_.pins();
    ASSERT_EQ(pins.size(), 2u);
    EXPECT_EQ(pins[0].span, (TimeSpan{0, 40}));
    EXPECT_EQ(pins[1].span, (TimeSpan{60, 100}));
    EXPECT_EQ(index_.remove_pins(yard, {200, 300}), 0);
}

TEST_F(RecordingIndex, IsMadeAnewWhenItIsDamagedAndTheOldOneIsKept)
{
    index_.close();
    for (const char *ending : {"-wal", "-shm"})
        std::filesystem::remove(scratch_.file("nvrec.sqlite") + ending);
    std::ofstream(scratch_.file("nvrec.sqlite"))
        << "this is no database, and longer than a head of one " << std::string(4096, 'x');
    ASSERT_EQ(index_.open(scratch_.path()), "");
    EXPECT_TRUE(index_.made_anew());
    EXPECT_NE(index_.note().find("nvrec.sqlite.damaged"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(scratch_.file("nvrec.sqlite.damaged")));
    EXPECT_TRUE(index_.put_segment(segment(0, "yard", "a", 0, 1)));
}

TEST_F(RecordingIndex, OfAnotherVersionKeepsPinsAndEvents)
{
    const int64_t yard = index_.camera_number(0, "yard");
    ASSERT_NE(index_.put_pin(yard, {5, 9}), 0);
    ASSERT_TRUE(index_.put_event({0, "yard", 7, "alarm", "door"}));
    ASSERT_TRUE(index_.put_segment(segment(0, "yard", "a", 0, 1)));
    ASSERT_TRUE(index_.database().run("PRAGMA user_version = 99"));
    ASSERT_EQ(index_.open(scratch_.path()), "");
    EXPECT_TRUE(index_.made_anew());
    EXPECT_TRUE(index_.segments({}).empty()) << "these come from the files";
    ASSERT_EQ(index_.pins().size(), 1u);
    EXPECT_EQ(index_.pins()[0].camera, "yard");
    ASSERT_EQ(index_.events({}).size(), 1u);
    EXPECT_EQ(index_.events({})[0].text, "door");
}

class RetentionOfFiles : public RecordingIndex
{
protected:
    /* Ten files of 1000 bytes, an hour each; even ones of the yard, odd ones of the gate. */
    void SetUp() override
    {
        RecordingIndex::SetUp();
        for (int hour = 0; hour < 10; ++hour) {
            const std::string file = "file" + std::to_string(hour);
            std::ofstream(scratch_.file(file)) << std::string(1000, 'x');
            const char *camera = hour % 2 == 0 ? "yard" : "gate";
            ASSERT_TRUE(
                index_.put_segment(segment(hour % 2, camera, file, hour * kHour_us, (hour + 1) * kHour_us)));
        }
    }

    bool there(int hour) { return std::filesystem::exists(scratch_.file("file" + std::to_string(hour))); }

    Recycler retention_{index_};
};

TEST_F(RetentionOfFiles, DeletesTheOldestUntilTheSizeFits)
{
    retention_.set({.most_bytes = 7500});
    retention_.apply(10 * kHour_us);
    for (int hour = 0; hour < 10; ++hour)
        EXPECT_EQ(there(hour), hour >= 3) << hour;
    EXPECT_EQ(index_.total_bytes(), 7000);
    EXPECT_EQ(retention_.state().deleted, 3u);
    EXPECT_EQ(retention_.state().oldest_us, 3 * kHour_us);
    EXPECT_EQ(retention_.state().trouble, "");
}

TEST_F(RetentionOfFiles, DeletesWhatIsTooOldAndKeepsWhatIsPinned)
{
    ASSERT_NE(index_.put_pin(index_.camera_number(0, "yard"), {2 * kHour_us + 5, 2 * kHour_us + 6}), 0);
    retention_.set({.most_age_s = 5 * 3600});
    retention_.apply(10 * kHour_us);
    for (int hour = 0; hour < 10; ++hour)
        EXPECT_EQ(there(hour), hour >= 4 || hour == 2) << hour;
}

TEST_F(RetentionOfFiles, SaysWhenNothingMayBeDeleted)
{
    for (const CameraRow &camera : index_.cameras())
        ASSERT_NE(index_.put_pin(camera.id, {INT64_MIN, INT64_MAX}), 0);
    retention_.set({.most_bytes = 10});
    retention_.apply(10 * kHour_us);
    EXPECT_TRUE(there(0));
    EXPECT_NE(retention_.state().trouble.find("pinned"), std::string::npos);
}

/* Of a camera that is not recorded, the gate after two o'clock and the yard where it was pinned. */
TEST_F(RetentionOfFiles, ForgetsGapsAndEventsWithTheRecordingsOfTheirTime)
{
    for (int hour = 0; hour < 10; ++hour) {
        const std::string text = std::to_string(hour);
        for (const EventRow &event : {EventRow{0, "yard", hour * kHour_us + 5, "alarm", "y" + text},
                                      EventRow{1, "gate", hour * kHour_us + 5, "alarm", "g" + text},
                                      EventRow{2, "door", hour * kHour_us + 5, "alarm", "d" + text}})
            ASSERT_TRUE(index_.put_event(event));
        ASSERT_TRUE(
            index_.put_gap({0, "yard", "main", hour * kHour_us + 7, hour * kHour_us + 9, "y" + text}));
    }
    ASSERT_NE(index_.put_pin(index_.camera_number(0, "yard"), {0, 1}), 0);
    ASSERT_NE(index_.put_pin(index_.camera_number(1, "gate"), {2 * kHour_us, 2 * kHour_us + 6}), 0);
    const auto left = [this] {
        std::string texts;
        for (const EventRow &event : index_.events({}))
            texts += event.text + " ";
        for (const GapRow &gap : index_.gaps({}))
            texts += "gap-" + gap.why + " ";
        return texts;
    };
    const std::string all = left();
    retention_.set({.most_bytes = 10'000, .most_age_s = 24 * 3600});
    retention_.apply(10 * kHour_us);
    EXPECT_EQ(left(), all) << "nothing was deleted, and nothing is older";
    retention_.set({.most_bytes = 8000});
    retention_.apply(10 * kHour_us);
    ASSERT_FALSE(there(1) || there(2));
    ASSERT_TRUE(there(0) && there(3));
    EXPECT_EQ(left().substr(0, 27), "y0 g2 y3 g3 d3 y4 g4 d4 y5 ");
    EXPECT_NE(left().find(" gap-y0 gap-y3 "), std::string::npos) << left();
    retention_.set({.most_age_s = 3 * 3600});
    retention_.apply(30 * kHour_us);
    EXPECT_EQ(left(), "y0 g2 gap-y0 ") << "of the camera that is not recorded, too";
}

/* A directory where the file was cannot be unlinked, by root neither. */
TEST_F(RetentionOfFiles, PassesOverAFileThatCannotBeDeletedAndTriesItAgain)
{
    std::filesystem::remove(scratch_.file("file0"));
    std::filesystem::create_directory(scratch_.file("file0"));
    retention_.set({.most_bytes = 8500});
    retention_.apply(10 * kHour_us);
    for (int hour = 0; hour < 10; ++hour)
        EXPECT_EQ(there(hour), hour == 0 || hour >= 3) << hour;
    EXPECT_EQ(retention_.state().deleted, 2u);
    EXPECT_NE(retention_.state().trouble.find(scratch_.file("file0") + " cannot be deleted"),
              std::string::npos)
        << retention_.state().trouble;

    std::filesystem::remove(scratch_.file("file0"));
    std::ofstream(scratch_.file("file0")) << "it can go now";
    retention_.set({.most_bytes = 7500});
    retention_.apply(10 * kHour_us);
    EXPECT_FALSE(there(0));
    EXPECT_TRUE(there(3));
    EXPECT_EQ(retention_.state().trouble, "");
}

TEST_F(RetentionOfFiles, FreesRoomThoughTheOldestFileCannotBeDeleted)
{
    std::filesystem::remove(scratch_.file("file0"));
    std::filesystem::create_directory(scratch_.file("file0"));
    EXPECT_FALSE(retention_.make_room(INT64_MAX)) << "no disk is so large";
    for (int hour = 1; hour < 10; ++hour)
        EXPECT_FALSE(there(hour)) << hour;
    EXPECT_NE(retention_.state().trouble.find("file0 cannot be deleted"), std::string::npos);
}

TEST_F(RetentionOfFiles, LeavesTheFileAloneThatIsBeingWritten)
{
    SegmentRow growing = segment(0, "yard", "file0", 0, kHour_us);
    growing.finished = false;
    ASSERT_TRUE(index_.put_segment(growing));
    retention_.set({.most_bytes = 8500});
    retention_.apply(10 * kHour_us);
    EXPECT_TRUE(there(0));
    EXPECT_FALSE(there(1));
    EXPECT_FALSE(there(2));
}

TEST_F(RetentionOfFiles, KnowsWhetherWhatMayGoWouldHelp)
{
    EXPECT_EQ(index_.unpinned_bytes(), 10'000);
    EXPECT_TRUE(retention_.may_make_room(1));
    EXPECT_FALSE(retention_.may_make_room(INT64_MAX / 2));
    ASSERT_NE(index_.put_pin(index_.camera_number(0, "yard"), {0, 3 * kHour_us}), 0);
    EXPECT_EQ(index_.unpinned_bytes(), 8000) << "two of that camera";
    for (int hour = 0; hour < 10; ++hour)
        EXPECT_TRUE(there(hour)) << hour;
}

TEST_F(RetentionOfFiles, FreesRoomOnAFullDiskUpToTheLastUnpinnedFile)
{
    EXPECT_TRUE(retention_.make_room(1)) << "there is that much";
    EXPECT_TRUE(there(0));
    EXPECT_FALSE(retention_.make_room(INT64_MAX)) << "no disk is so large";
    for (int hour = 0; hour < 10; ++hour)
        EXPECT_FALSE(there(hour)) << hour;
}

} // namespace
