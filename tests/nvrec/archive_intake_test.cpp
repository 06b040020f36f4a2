/* Files taken into the index: what their names and their structure say, torn ends, days of them. */
#include <chrono>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "archive/file_extent.h"
#include "archive/intake.h"
#include "archive_days.h"

namespace
{

using namespace nvrec;
using namespace archive_days;

TEST(RecordingName, SaysChannelStreamAndLocalTime)
{
    live_in_berlin();
    const auto name = nvrec::recording_name("ch03-main-20261121-140000.mp4");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->channel, 3);
    EXPECT_EQ(name->stream, "main");
    EXPECT_EQ(name->from_us, local(2026, 11, 21, 14));
    EXPECT_EQ(nvrec::recording_name("ch03-network-20261121-140000-2.mkv")->stream, "network");
}

TEST(RecordingName, TellsTheTwoHoursApartThatHaveOneName)
{
    live_in_berlin();
    const auto first = nvrec::recording_name("ch00-main-20261025-023000+0200.mp4");
    const auto second = nvrec::recording_name("ch00-main-20261025-023000+0100-2.mp4");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(second->from_us - first->from_us, kHour_us);
}

TEST(RecordingName, IsNotThatOfOtherFiles)
{
    for (const char *name : {"", "ch", "ch03", "ch03-main-20261121-140000", "ch03-main-20261121-140000.txt",
                             "ch03-main-20261121-140000.mp4.part", "chxx-main-20261121-140000.mp4",
                             "ch03--20261121-140000.mp4", "nvrec.sqlite", "ch03-main-2026112-140000.mp4"})
        EXPECT_FALSE(nvrec::recording_name(name)) << name;
}

struct ExtentCase {
    const char *clip;
    bool fragments;
};

class Extent : public testing::TestWithParam<ExtentCase>
{
};

TEST_P(Extent, IsTheFilesLength)
{
    const FileExtent extent = extent_of(clip(GetParam().clip));
    ASSERT_TRUE(extent.readable) << extent.problem;
    EXPECT_NEAR(static_cast<double>(extent.duration_us), 20e6, 50e3);
    EXPECT_FALSE(extent.torn());
    EXPECT_EQ(extent.bytes, static_cast<int64_t>(std::filesystem::file_size(clip(GetParam().clip))));
}

/* Cut at every hundredth of it, it has less and less whole fragments; nothing is read beyond its end. */
TEST_P(Extent, OfATornFileEndsWithItsLastWholeFragment)
{
    if (!GetParam().fragments) return;
    ScratchDirectory scratch;
    const std::string path = scratch.file("torn");
    const std::string whole = file_text(clip(GetParam().clip));
    int64_t before_us = INT64_MAX;
    int torn = 0, readable = 0;
    for (int percent = 99; percent >= 0; --percent) {
        std::ofstream(path, std::ios::binary)
            << whole.substr(0, whole.size() * static_cast<size_t>(percent) / 100);
        const FileExtent extent = extent_of(path);
        torn += extent.torn();
        readable += extent.readable;
        EXPECT_LE(extent.duration_us, before_us) << percent;
        EXPECT_LE(extent.whole_bytes, extent.bytes) << percent;
        if (extent.duration_us > 0 && percent < 95) {
            EXPECT_NEAR(static_cast<double>(extent.duration_us), 20e6 * percent / 100, 2.5e6) << percent;
        }
        before_us = extent.duration_us;
        if (!extent.torn()) continue;
        std::filesystem::resize_file(path, static_cast<uintmax_t>(extent.whole_bytes));
        const FileExtent cut = extent_of(path);
        EXPECT_FALSE(cut.torn()) << percent;
        EXPECT_EQ(cut.duration_us, extent.duration_us) << percent;
    }
    EXPECT_GT(torn, 80);
    EXPECT_GT(readable, 80);
}

INSTANTIATE_TEST_SUITE_P(Containers, Extent,
                         testing::Values(ExtentCase{"seconds.mp4", true}, ExtentCase{"seconds.mkv", true},
                                         ExtentCase{"plain.mp4", false}));

TEST(Extent, OfNonsenseIsSaidToBeUnreadable)
{
    ScratchDirectory scratch;
    for (const std::string &text : {std::string(), std::string("x"), std::string(1000, '\0'),
                                    std::string(1000, '\xff'), std::string("\x1A\x45\xDF\xA3\x01"),
                                    std::string("\0\0\0\x08moov", 8), std::string("\0\0\0\0moof", 8)}) {
        std::ofstream(scratch.file("nonsense"), std::ios::binary) << text;
        EXPECT_FALSE(extent_of(scratch.file("nonsense")).readable);
        EXPECT_NE(extent_of(scratch.file("nonsense")).problem, "");
    }
    EXPECT_FALSE(extent_of(scratch.file("missing")).readable);
}

/* Every byte of its heads changed, one at a time: an answer comes, whichever. */
TEST(Extent, OfADamagedFileComesAllTheSame)
{
    ScratchDirectory scratch;
    for (const char *name : {"seconds.mp4", "seconds.mkv"}) {
        std::string bytes = file_text(clip(name)).substr(0, 6000);
        for (size_t at = 0; at < 1200; ++at) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(~damaged[at]);
            std::ofstream(scratch.file("damaged"), std::ios::binary) << damaged;
            const FileExtent extent = extent_of(scratch.file("damaged"));
            ASSERT_LE(extent.whole_bytes, extent.bytes);
        }
    }
}

class TakingIn : public testing::Test
{
protected:
    void SetUp() override
    {
        live_in_berlin();
        ASSERT_EQ(index_.open(scratch_.path()), "");
    }

    IntakeResult take(bool repair = true)
    {
        return take_in(index_, list_recordings(scratch_.path()), {.repair = repair});
    }

    ScratchDirectory scratch_;
    Index index_;
};

TEST_F(TakingIn, RecordingsOfEarlierVersions)
{
    put(scratch_.path(), 0, local(2026, 11, 21, 14));
    put(scratch_.path(), 3, local(2026, 11, 21, 15), "seconds.mkv");
    std::ofstream(scratch_.file("holiday.mp4")) << "not ours";
    const IntakeResult result = take();
    EXPECT_EQ(result.added, 2u);
    EXPECT_TRUE(result.lines.empty()) << result.lines.front();
    const auto rows = index_.segments({});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].channel, 0);
    EXPECT_EQ(rows[0].from_us, local(2026, 11, 21, 14));
    EXPECT_NEAR(static_cast<double>(rows[0].to_us - rows[0].from_us), 20e6, 50e3);
    EXPECT_TRUE(rows[0].finished);
    EXPECT_EQ(rows[1].channel, 3);
    EXPECT_EQ(take().added, 0u) << "known by now";
}

TEST_F(TakingIn, CutsATornFileBackAndKeepsWhatItHolds)
{
    const std::string path = put(scratch_.path(), 0, local(2026, 11, 21, 14));
    const auto size = static_cast<int64_t>(std::filesystem::file_size(path));
    std::filesystem::resize_file(path, static_cast<uintmax_t>(size / 2));
    const IntakeResult result = take();
    EXPECT_EQ(result.cut, 1u);
    ASSERT_EQ(result.lines.size(), 1u);
    EXPECT_NE(result.lines[0].find("torn"), std::string::npos);
    const auto rows = index_.segments({});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].bytes, static_cast<int64_t>(std::filesystem::file_size(path)));
    EXPECT_LT(rows[0].bytes, size / 2);
    EXPECT_GT(rows[0].to_us - rows[0].from_us, 7 * kSecond_us);
}

/* As after a power cut in the file's first second: known as begun, or not known at all. */
TEST_F(TakingIn, LeavesOutAFileOfAHeadWithoutAWholeFragment)
{
    for (const char *name : {"seconds.mp4", "seconds.mkv"}) {
        const std::string path = put(scratch_.path(), 0, local(2026, 11, 21, 14), name);
        const auto is_head = [&] {
            const FileExtent extent = extent_of(path);
            return extent.readable && extent.duration_us == 0;
        };
        for (uintmax_t bytes = 20'000; bytes > 0 && !is_head(); bytes -= 50)
            std::filesystem::resize_file(path, bytes);
        ASSERT_TRUE(is_head()) << name;
        const auto bytes = static_cast<int64_t>(std::filesystem::file_size(path));
        for (const bool known : {false, true}) {
            const int64_t from_us = local(2026, 11, 21, 14);
            if (known) {
                ASSERT_TRUE(index_.put_segment({0, "yard", "main", path, from_us, from_us, bytes, false}));
            }
            const IntakeResult result = take();
            ASSERT_EQ(result.lines.size(), 1u);
            EXPECT_NE(result.lines[0].find("cannot be played"), std::string::npos) << result.lines[0];
            EXPECT_TRUE(index_.segments({{}, "", {INT64_MIN, INT64_MAX}}).empty()) << name;
        }
        EXPECT_EQ(static_cast<int64_t>(std::filesystem::file_size(path)), bytes) << "it is left as it is";
        std::filesystem::remove(path);
    }
}

TEST_F(TakingIn, LeavesFilesAsTheyAreWhenItMayNotRepair)
{
    const std::string path = put(scratch_.path(), 0, local(2026, 11, 21, 14));
    const auto half = std::filesystem::file_size(path) / 2;
    std::filesystem::resize_file(path, half);
    take(false);
    EXPECT_EQ(std::filesystem::file_size(path), half);
    ASSERT_EQ(index_.segments({}).size(), 1u);
    EXPECT_FALSE(index_.segments({})[0].finished);
}

TEST_F(TakingIn, DropsEntriesWhoseFileHasGone)
{
    const std::string path = put(scratch_.path(), 0, local(2026, 11, 21, 14));
    take();
    std::filesystem::remove(path);
    EXPECT_EQ(take().removed, 1u);
    EXPECT_TRUE(index_.segments({}).empty());
}

TEST_F(TakingIn, SaysWhichFileCannotBePlayed)
{
    std::ofstream(scratch_.file("ch00-main-20261121-140000.mp4")) << "nothing of the kind";
    const IntakeResult result = take();
    ASSERT_EQ(result.lines.size(), 1u);
    EXPECT_NE(result.lines[0].find("ch00-main-20261121-140000.mp4"), std::string::npos);
    EXPECT_TRUE(index_.segments({}).empty());
}

} // namespace
