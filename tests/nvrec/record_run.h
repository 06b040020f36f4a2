/* record_run.h - "nvrec record" as a process, and what is expected of its files. For tests. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>

#include "nvrec_run.h"
#include "record_files.h"

namespace nvrec_test
{

constexpr int kClipFrames = 240;
constexpr int kFramesPerKey = 10;
constexpr double kFrame_s = 1.0 / 30;
constexpr const char *kOneDay = "86400"; /* a segment that ends at midnight only, not on the hour */

inline std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

struct Camera {
    const char *file;
    const char *codec;
    const char *tag;   /* in MP4 */
    const char *sound; /* its codec, kept as it is; null = none */
};
inline constexpr Camera kCameras[] = {
    {"camera0.mp4", "h264", "avc1", "aac"},
    {"camera1.mkv", "h264", "avc1", nullptr},
    {"camera2.mp4", "hevc", "hvc1", nullptr},
    {"camera3.mkv", "hevc", "hvc1", "pcm_alaw"},
};

inline std::vector<std::string> camera_files()
{
    std::vector<std::string> files;
    for (const Camera &camera : kCameras)
        files.push_back(clip(camera.file));
    return files;
}

/* The first pictures of a source that begins again at its end: none missing, in order. */
inline void expect_beginning_of(const std::vector<std::string> &source,
                                const std::vector<std::string> &pictures, const std::string &what)
{
    ASSERT_FALSE(source.empty()) << what;
    for (size_t i = 0; i < pictures.size(); ++i)
        ASSERT_EQ(pictures[i], source[i % source.size()]) << what << ", picture " << i;
}

/* Look until it holds; false when it still does not after a minute. */
inline bool wait_until(const std::function<bool()> &holds)
{
    constexpr int kPeriod_ms = 50, kPatience_ms = 60'000;
    for (int waited_ms = 0; !holds(); waited_ms += kPeriod_ms) {
        if (waited_ms >= kPatience_ms) return false;
        poll(nullptr, 0, kPeriod_ms);
    }
    return true;
}

class NvrecRecord : public testing::Test
{
protected:
    std::vector<std::string> command(const std::vector<std::string> &options,
                                     const std::vector<std::string> &inputs) const
    {
        std::vector<std::string> whole = {NVREC_PROGRAM, "record",
                                          "--window",    "off",
                                          "--log",       scratch_.file("log"),
                                          "--json",      scratch_.file("report.json"),
                                          "--dir",       files()};
        whole.insert(whole.end(), options.begin(), options.end());
        whole.insert(whole.end(), inputs.begin(), inputs.end());
        return whole;
    }

    int record(const std::vector<std::string> &options, const std::vector<std::string> &inputs)
    {
        Process process(command(options, inputs));
        const int status = process.wait();
        output_ = process.output;
        errors_ = process.errors;
        json_ = file_text(scratch_.file("report.json"));
        return status;
    }

    std::string files() const { return scratch_.file("files"); }

    std::vector<std::string> files_of_channel(int channel, const std::string &stream = "main") const
    {
        return files_of(files(), "ch0" + std::to_string(channel) + "-" + stream + "-");
    }

    /* Every number of a row fits the others, and what was stored is what the camera sent. */
    void expect_sums(int channel, const std::string &stream)
    {
        auto number = [&](const char *name) { return recorded(json_, channel, stream, name); };
        EXPECT_GE(number("stored"), 0) << stream << " of channel " << channel << "\n" << json_;
        EXPECT_EQ(number("stored"), number("read") + number("lost")) << channel << " " << stream;
        EXPECT_EQ(number("read"), number("written") + number("skipped")) << channel << " " << stream;
        if (stream != "main") return;
        EXPECT_EQ(number("stored") + number("refused"),
                  reported(json_, channel, "sent") + reported(json_, channel, "refused"));
    }

    ScratchDirectory scratch_;
    std::string output_, errors_, json_;
};

} // namespace nvrec_test
