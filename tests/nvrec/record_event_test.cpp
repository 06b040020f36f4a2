/*
 * Recording around events, on the board's stepped clock: where its files begin and end when key frames
 * are far apart, and when the disk is late.
 */
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/time_of_day.h"
#include "camera/input.h"
#include "frame_pools.h"
#include "nvrec_run.h"
#include "nvrhal.h"
#include "record/event_span.h"
#include "record/recording.h"
#include "record_files.h"
#include "vboard.h"

namespace
{

using namespace nvrec;

constexpr int kEventChannel = 1;
constexpr int64_t kFrame_us = 1'000'000 / 30;
constexpr int kSparseGroup = 120; /* pictures from key frame to key frame: four seconds */

/* Its first write waits until it is let go. */
class StuckDisk : public FileSystem
{
public:
    ~StuckDisk() override { let_go(); }
    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        is_called_ = true;
        is_called_.notify_all();
        stuck_.wait(true);
        return FileSystem::write(descriptor, bytes, at);
    }
    void wait_until_it_is_called() { is_called_.wait(false); }
    void let_go()
    {
        stuck_ = false;
        stuck_.notify_all();
    }

private:
    std::atomic<bool> is_called_ = false, stuck_ = true;
};

/* A network stream, which has no sound. */
class NvrecEvents : public testing::Test
{
protected:
    void SetUp() override
    {
        begin_frame_pool(STREAM_POOL_SUB, kEventChannel + 1);
        vboard_clock_take();
        disk_.directory = scratch_.file("files");
        plan_.mode = RecordingMode::kEvent;
        plan_.before_s = 1;
        plan_.after_s = 1;
    }

    void TearDown() override
    {
        recording_.reset();
        writer_.reset();
        vboard_clock_release();
    }

    void begin(const std::string &clip)
    {
        clip_ = std::make_unique<Input>(std::string(NVREC_CLIPS) + "/" + clip);
        ASSERT_TRUE(clip_->open(std::chrono::seconds(10))) << clip_->error();
        RecordOptions options;
        options.directory = disk_.directory;
        options.segment_s = 86'400;
        options.plan = plan_;
        writer_ = std::make_unique<DiskWriter>(disk_);
        recording_ = std::make_unique<Recording>(kEventChannel, PoolStream::kNetwork, options, *writer_,
                                                 [](const std::string &line) { ADD_FAILURE() << line; });
        recording_->start();
    }

    /* The next so many pictures, each at its time. */
    void put(int count, bool wait = true)
    {
        AccessUnit unit;
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(clip_->read(&unit), Input::Read::kUnit) << "the clip is too short";
            ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
            ASSERT_EQ(recording_->video().put(unit, clip_->facts(), wall_now_us()), 0);
            if (wait) recording_->video().wait_for_reader();
        }
    }

    /* Pictures in its files, oldest file first. */
    std::vector<size_t> finish()
    {
        recording_->finish();
        DiskWriter::Leftover none;
        EXPECT_TRUE(writer_->finish(&none));
        const RecordingReport report = recording_->reports().front();
        std::vector<size_t> counts;
        for (const std::string &path : report.files)
            counts.push_back(picture_checksums(path).size());
        return counts;
    }

    ScratchDirectory scratch_;
    DiskWriterOptions disk_;
    RecordingPlan plan_;
    std::unique_ptr<Input> clip_;
    std::unique_ptr<DiskWriter> writer_;
    std::unique_ptr<Recording> recording_;
};

TEST_F(NvrecEvents, AFileEndsAtAKeyFrameSoThatTheNextEventHasItsSecondsBefore)
{
    begin("sparse.mp4");
    put(10);
    recording_->begin_event(); /* until picture 40 */
    put(60);
    recording_->begin_event(); /* in the same group */
    put(80);
    recording_->begin_event(); /* at picture 150, in the next one, of which nothing was wanted so far */
    put(60);
    EXPECT_EQ(finish(), (std::vector<size_t>{kSparseGroup, 90}));
}

TEST_F(NvrecEvents, AnEventWithoutSecondsBeforeBeginsWithItsGroup)
{
    plan_.before_s = 0;
    begin("sparse.mp4");
    put(60);
    recording_->begin_event();
    put(20);
    EXPECT_EQ(finish(), std::vector<size_t>{80});
}

TEST_F(NvrecEvents, PicturesThatWaitForTheDiskBelongToTheEventTheyWereTakenIn)
{
    const auto stuck = std::make_shared<StuckDisk>();
    disk_.files = stuck;
    disk_.most_queued_bytes = 1; /* the rest waits in the pool */
    plan_.after_s = 5;
    begin("network1.mp4");
    recording_->begin_event();
    put(60, false);
    stuck->wait_until_it_is_called();
    ASSERT_EQ(vboard_clock_step_us(9'000'000), 0);
    stuck->let_go();
    put(10, false); /* a group that comes behind it */
    EXPECT_EQ(finish(), std::vector<size_t>{60});
}

TEST_F(NvrecEvents, CountInNoOtherPlan)
{
    plan_.mode = RecordingMode::kHours; /* none of the day's */
    begin("network1.mp4");
    put(20);
    recording_->begin_event();
    put(20);
    EXPECT_TRUE(finish().empty());
    EXPECT_EQ(recording_->status().written, 0u);
}

TEST_F(NvrecEvents, LastForTheTimeOfDayOfPictures)
{
    const int64_t begin_us = wall_now_us();
    EventSpan span;
    EXPECT_FALSE(span.holds(begin_us)) << "there was none";
    EXPECT_FALSE(span.holds(0));
    span.begin(5);
    EXPECT_TRUE(span.holds(begin_us + 4'999'999));
    EXPECT_TRUE(span.holds(begin_us + 3'600'000'000)) << "a clock that was set back in between";
    ASSERT_EQ(vboard_clock_step_us(9'000'000), 0);
    EXPECT_TRUE(span.holds(begin_us + 4'999'999));
    EXPECT_FALSE(span.holds(begin_us + 5'000'000));
    span.begin(1);
    EXPECT_TRUE(span.holds(begin_us + 9'999'999));
}

} // namespace
