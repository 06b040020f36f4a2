/* play_recordings.h - "nvrec play" as its user runs it, of recordings in a directory. For tests. */
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "play_clips.h"
#include "stamps.h"

namespace nvrec_test
{

/* The clips: 125 pictures, 25 a second, a key frame a second, each of a stamp channel of its own. */
constexpr const char *kClip = "play_reordered.mp4", *kOtherCodec = "play_h265.mp4";
constexpr uint32_t kRate = 25;
constexpr uint32_t kLast = 124;
constexpr unsigned kChannel = 20, kOtherChannel = 21;

class PlayRecordings : public testing::Test
{
protected:
    void SetUp() override { setenv("TZ", "Europe/Berlin", 1); }

    int play(const std::vector<std::string> &arguments)
    {
        std::vector<std::string> whole = {
            NVREC_PROGRAM, "play", "--window", "off",   "--log", scratch_.file("log"),
            "--control",   "none", "--layout", layout_, "-p",    scratch_.file("seen.png")};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        Process process(whole);
        const int status = process.wait();
        words_ = process.output + process.errors;
        return status;
    }

    /* All that is recorded, from a time of 2026-11-21 on. */
    int play_at(const std::string &time, const std::vector<std::string> &more)
    {
        std::vector<std::string> whole = {"--dir", scratch_.file("rec"), "--at", "2026-11-21T" + time};
        whole.insert(whole.end(), more.begin(), more.end());
        return play(whole);
    }

    std::optional<stamp::Stamp> seen() const
    {
        return stamp_in(read_picture(scratch_.file("seen.png")), 0, 0, 1920, 1080);
    }

    /* A recording that begins at that time of 2026-11-21. */
    void put(const std::string &time, int channel = 0, const std::string &of = kClip)
    {
        std::filesystem::create_directories(scratch_.file("rec"));
        char name[64];
        std::snprintf(name, sizeof name, "rec/ch%02d-main-20261121-%s.mp4", channel, time.c_str());
        std::filesystem::copy_file(clip(of), scratch_.file(name));
    }

    ScratchDirectory scratch_;
    std::string words_;
    std::string layout_ = "1";
};

} // namespace nvrec_test
