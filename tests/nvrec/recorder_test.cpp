/*
 * The recorder as a module: events and the record key, a disk that hangs, sixteen cameras. Cameras are
 * clips that the test reads by itself, so that it knows what was put.
 */
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>

#include "archive/index.h"
#include "camera/input.h"
#include "console/exit_code.h"
#include "frame_pools.h"
#include "nvrec_run.h"
#include "nvrhal.h"
#include "record/recorder.h"
#include "record_files.h"
#include "stand_in_wall.h"

namespace
{

using namespace nvrec;

/* What is not in the stand-in wall: an alarm, and threads that are watched. */
class RecordingWall : public nvrec_test::StandInWall
{
public:
    using StandInWall::StandInWall;
    void set_alarm(const std::string &text) override { alarm_ = text; }
    std::string alarm() const override { return alarm_; }
    void watch_thread(const WatchedThread &thread) override { watched.push_back(thread); }
    std::vector<WatchedThread> watched;

private:
    std::string alarm_;
};

/* Writes hang while it is told so. */
class HangingDisk : public FileSystem
{
public:
    ~HangingDisk() override { set(false); }
    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        hangs_.wait(true);
        return FileSystem::write(descriptor, bytes, at);
    }
    void set(bool hangs)
    {
        hangs_ = hangs;
        hangs_.notify_all();
    }

private:
    std::atomic<bool> hangs_ = false;
};

/* Has no place for a new file while another one lies there, though it says that much is free. */
class QuotaDisk : public FileSystem
{
public:
    explicit QuotaDisk(std::string full_with) : full_with_(std::move(full_with)) {}
    int create(const std::string &path, int *descriptor) override
    {
        return std::filesystem::exists(full_with_) ? EDQUOT : FileSystem::create(path, descriptor);
    }

private:
    const std::string full_with_;
};

class UnsyncedDisk : public FileSystem
{
    int sync(int) override { return EIO; }
};

class NvrecRecorder : public testing::Test
{
protected:
    void start(int cameras, RecorderOptions options = {})
    {
        begin_frame_pool(STREAM_POOL_MAIN, cameras);
        begin_frame_pool(STREAM_POOL_AUDIO, cameras);
        options.record.directory = scratch_.file("files");
        options.record.segment_s = 86'400;
        options.feed.as_fast_as_can = true; /* put() waits for the reader */
        wall_ = std::make_unique<RecordingWall>(cameras);
        recorder_ = std::make_unique<Recorder>(std::move(options));
        ASSERT_TRUE(recorder_->start(*wall_));
    }

    /* The next so many pictures of a clip, as its camera's thread brings them. */
    void put(int channel, Input &clip, int count)
    {
        AccessUnit unit;
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(clip.read(&unit), Input::Read::kUnit);
            recorder_->on_unit(channel, unit, clip.facts());
        }
    }

    RecordingStatus status(int channel) const
    {
        for (const RecordingStatus &status : recorder_->recordings()) {
            if (status.channel == channel && status.stream == "main") return status;
        }
        return {};
    }

    template <typename Holds> bool comes_true(Holds holds)
    {
        for (int i = 0; i < 400 && !holds(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return holds();
    }

    std::vector<std::string> files() { return files_of(scratch_.file("files"), "ch"); }

    ScratchDirectory scratch_;
    Input clip_{std::string(NVREC_CLIPS) + "/camera1.mkv"}; /* a key frame every ten pictures, no sound */
    std::unique_ptr<RecordingWall> wall_;
    std::unique_ptr<Recorder> recorder_;
};

TEST_F(NvrecRecorder, AnEventIsRecordedFromItsSecondsBeforeOn)
{
    RecorderOptions options;
    options.record.plan.mode = RecordingMode::kEvent;
    options.record.plan.before_s = 1; /* 30 pictures */
    options.record.plan.after_s = 3600;
    std::vector<RecordedEvent> events;
    options.index = false;
    options.hooks.event = [&events](const RecordedEvent &event) { events.push_back(event); };
    start(1, std::move(options));
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 100);
    ASSERT_TRUE(comes_true([&] { return status(0).state == RecordingState::kOff; }));
    EXPECT_FALSE(recorder_->runs(0));
    recorder_->event(0, "outside", "a door");
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return recorder_->runs(0); }));
    EXPECT_TRUE(status(0).by_event);
    recorder_->stop();
    ASSERT_EQ(files().size(), 1u);
    const std::vector<std::string> source = picture_checksums(std::string(NVREC_CLIPS) + "/camera1.mkv");
    const std::vector<std::string> recorded = picture_checksums(files()[0]);
    /* The group that holds picture 69, one second before the last one before the event. */
    EXPECT_EQ(recorded, std::vector(source.begin() + 60, source.begin() + 150));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].text, "a door");
}

TEST_F(NvrecRecorder, TheRecordKeyStopsAndStarts)
{
    start(1);
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return recorder_->runs(0); }));
    EXPECT_TRUE(recorder_->on_key(Key::kRecord));
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return status(0).state == RecordingState::kOff; }));
    recorder_->take_turn(Clock::now());
    EXPECT_FALSE(wall_->recording());
    EXPECT_TRUE(recorder_->on_key(Key::kRecord));
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return recorder_->runs(0); }));
    recorder_->take_turn(Clock::now());
    EXPECT_TRUE(wall_->recording());
    EXPECT_FALSE(recorder_->on_key(Key::kMute));
    recorder_->stop();
    ASSERT_EQ(files().size(), 2u);
    /* A few pictures were on their way when the key was pressed. */
    const size_t recorded = picture_checksums(files()[0]).size() + picture_checksums(files()[1]).size();
    EXPECT_GE(recorded, 96u);
    EXPECT_LE(recorded, 100u);
}

TEST_F(NvrecRecorder, TheRecordKeyRecordsWhatNoPlanWants)
{
    RecorderOptions options;
    options.record.plan.mode = RecordingMode::kNever;
    start(1, std::move(options));
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    recorder_->event(0, "alarm", "");
    put(0, clip_, 50);
    recorder_->on_key(Key::kRecord);
    put(0, clip_, 50);
    recorder_->stop();
    ASSERT_EQ(files().size(), 1u);
    EXPECT_EQ(picture_checksums(files()[0]).size(), 50u);
}

TEST_F(NvrecRecorder, ACameraThatFellSilentIsNotRecordedAndTheNextOneHasAFileOfItsOwn)
{
    start(1, RecorderOptions());
    recorder_->set_name(0, "yard");
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return recorder_->runs(0); }));
    ASSERT_TRUE(comes_true([&] { return !recorder_->runs(0); })) << "three seconds without a picture";
    EXPECT_EQ(status(0).state, RecordingState::kWaiting);
    recorder_->take_turn(Clock::now());
    EXPECT_FALSE(wall_->recording()) << "the lamp";

    recorder_->set_name(0, "door");
    ASSERT_TRUE(comes_true([&] { return status(0).written == 0; })) << "it has written nothing yet";
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return recorder_->runs(0); }));
    recorder_->stop();
    EXPECT_EQ(status(0).written, 50u) << "its own pictures alone";
    EXPECT_NE(recorder_->json().find("\"written\": 50, "), std::string::npos) << recorder_->json();
    ASSERT_EQ(files().size(), 2u);
    for (const std::string &path : files())
        EXPECT_EQ(picture_checksums(path).size(), 50u) << path;
    Index index;
    ASSERT_EQ(index.open(scratch_.file("files")), "");
    std::vector<std::string> names;
    for (const CameraRow &camera : index.cameras())
        names.push_back(camera.name);
    EXPECT_EQ(names, (std::vector<std::string>{"yard", "door"}));
}

TEST_F(NvrecRecorder, AFullDiskMakesRoomForANewFile)
{
    std::filesystem::create_directories(scratch_.file("files"));
    const std::string oldest = scratch_.file("files/ch00-main-20200101-140000.mp4");
    std::filesystem::copy_file(std::string(NVREC_CLIPS) + "/camera2.mp4", oldest);
    RecorderOptions options;
    options.recycle = true;
    options.files = std::make_shared<QuotaDisk>(oldest);
    start(1, std::move(options));
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    recorder_->stop();
    EXPECT_FALSE(std::filesystem::exists(oldest));
    ASSERT_EQ(files().size(), 1u);
    EXPECT_EQ(picture_checksums(files()[0]).size(), 50u);
    EXPECT_TRUE(wall_->ends.empty());
    EXPECT_EQ(recorder_->disk().recycled_files, 1u);
}

TEST_F(NvrecRecorder, WhatMayNotBeOnTheDiskShowsInTheExitStatus)
{
    RecorderOptions options;
    options.files = std::make_shared<UnsyncedDisk>();
    start(1, std::move(options));
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    recorder_->stop();
    EXPECT_EQ(wall_->ends, std::vector<int>{kExitOutputFailed});
    EXPECT_EQ(status(0).written, 0u);
    EXPECT_NE(status(0).last_error.find("may not be on the disk"), std::string::npos) << status(0).last_error;
}

TEST_F(NvrecRecorder, SixteenCamerasAreRecordedWholly)
{
    constexpr int kFrames = 60;
    start(kMostRecorded);
    for (int channel = 0; channel < kMostRecorded; ++channel) {
        Input clip(std::string(NVREC_CLIPS) + "/camera1.mkv");
        ASSERT_TRUE(clip.open(std::chrono::seconds(10)));
        put(channel, clip, kFrames);
    }
    for (int channel = 0; channel < kMostRecorded; ++channel)
        EXPECT_EQ(status(channel).beside_the_pool, channel >= NVRHAL_STORED_CHANNELS) << channel;
    recorder_->stop();
    EXPECT_EQ(files().size(), static_cast<size_t>(kMostRecorded));
    for (const std::string &path : files())
        EXPECT_EQ(picture_checksums(path).size(), static_cast<size_t>(kFrames)) << path;
    for (int channel = 0; channel < kMostRecorded; ++channel) {
        EXPECT_EQ(status(channel).written, static_cast<uint64_t>(kFrames)) << channel;
        EXPECT_EQ(status(channel).lost, 0u) << channel;
    }
    EXPECT_TRUE(wall_->ends.empty());
}

TEST_F(NvrecRecorder, AHangingDiskIsToldWithinThreeSecondsAndHoldsTheEndUpForOne)
{
    const auto disk = std::make_shared<HangingDisk>();
    RecorderOptions options;
    options.files = disk;
    start(1, std::move(options));
    ASSERT_TRUE(clip_.open(std::chrono::seconds(10)));
    put(0, clip_, 50);
    ASSERT_TRUE(comes_true([&] { return status(0).written > 0; }));
    recorder_->take_turn(Clock::now());
    EXPECT_TRUE(wall_->alarm().empty());
    disk->set(true);
    put(0, clip_, 50);
    const Clock::time_point began = Clock::now();
    while (wall_->alarm().empty() && Clock::now() - began < std::chrono::seconds(10)) {
        const Clock::time_point next = recorder_->take_turn(Clock::now());
        std::this_thread::sleep_for(next - Clock::now());
    }
    EXPECT_LT(Clock::now() - began, std::chrono::seconds(3));
    EXPECT_EQ(wall_->alarm(), "Recording: the disk does not answer");
    EXPECT_FALSE(wall_->recording()) << "the lamp";
    EXPECT_FALSE(recorder_->runs(0));
    EXPECT_EQ(status(0).state, RecordingState::kFailing);
    EXPECT_EQ(recorder_->disk().state, DiskState::kHangs);
    EXPECT_GT(status(0).lag_s, 1.0);
    bool watched = false;
    for (const WatchedThread &thread : wall_->watched)
        watched |= thread.heartbeat_deadline() != Clock::time_point::max();
    EXPECT_TRUE(watched) << "who feeds the watchdog sees it";

    const Clock::time_point stopped_at = Clock::now();
    recorder_->stop();
    EXPECT_LT(Clock::now() - stopped_at, std::chrono::milliseconds(1500));
    EXPECT_EQ(wall_->ends, std::vector<int>{kExitOutputFailed});
    recorder_.reset();
    disk->set(false);
}

} // namespace
