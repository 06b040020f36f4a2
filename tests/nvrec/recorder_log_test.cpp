/* What the recorder does by itself, or by a key, stands in the log, however quiet its terminal is. */
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

#include "nvrec_run.h"
#include "record/recorder.h"
#include "stand_in_wall.h"

namespace
{

using namespace nvrec;

/* A terminal leads this process's output to its log: afterwards it goes where it went before. */
class OutputOfTheTest
{
public:
    OutputOfTheTest() : out_(dup(STDOUT_FILENO)), error_(dup(STDERR_FILENO)) {}
    ~OutputOfTheTest()
    {
        std::fflush(stdout);
        dup2(out_, STDOUT_FILENO);
        dup2(error_, STDERR_FILENO);
        close(out_);
        close(error_);
    }
    OutputOfTheTest(const OutputOfTheTest &) = delete;
    OutputOfTheTest &operator=(const OutputOfTheTest &) = delete;

private:
    const int out_, error_;
};

class NvrecRecorderLog : public testing::Test
{
protected:
    void start(RecorderOptions options)
    {
        ASSERT_TRUE(wall_.terminal().send_log_to(scratch_.file("nvrec.log"), {.quiet = true}));
        options.record.directory = scratch_.file("files");
        recorder_ = std::make_unique<Recorder>(std::move(options));
        ASSERT_TRUE(recorder_->start(wall_));
    }

    bool logs(const std::string &line)
    {
        for (int tenths = 0; tenths < 100; ++tenths) {
            if (file_text(scratch_.file("nvrec.log")).find(" info: " + line) != std::string::npos)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return false;
    }

    /* The recorder ends, and what the test says is seen again. */
    void stop()
    {
        recorder_->stop();
        output_.reset();
    }

    std::optional<OutputOfTheTest> output_{std::in_place};
    ScratchDirectory scratch_;
    nvrec_test::StandInWall wall_; /* without cameras */
    std::unique_ptr<Recorder> recorder_;
};

TEST_F(NvrecRecorderLog, SaysWhatTheRecordKeyDid)
{
    start({});
    recorder_->set_order(RecordOrder::kStop);
    recorder_->set_order(RecordOrder::kAsPlanned);
    stop();
    EXPECT_TRUE(logs("recording is stopped by the record key"));
    EXPECT_TRUE(logs("recording goes by its plan"));
}

TEST_F(NvrecRecorderLog, SaysWhichRecordingsWereDeleted)
{
    std::filesystem::create_directories(scratch_.file("files"));
    const std::string oldest = scratch_.file("files/ch00-main-20200101-140000.mp4");
    std::filesystem::copy_file(std::string(NVREC_CLIPS) + "/camera2.mp4", oldest);
    RecorderOptions options;
    options.retention.most_age_s = 3600;
    start(std::move(options));
    const bool is_logged = logs("deleted to make room: " + oldest);
    stop();
    EXPECT_TRUE(is_logged);
    EXPECT_FALSE(std::filesystem::exists(oldest));
}

} // namespace
