/*
 * Containers, looked at by libavformat: every picture and every block of sound has the time that it
 * was given, whatever the camera's rate does and wherever fragments end.
 */
#include <cmath>
#include <fstream>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "archive/intake.h"
#include "camera/input.h"
#include "nvrec_run.h"
#include "record/container_file.h"
#include "record/parameter_sets.h"
#include "record/segment.h"

namespace
{

using namespace nvrec;

constexpr int64_t kOrigin_us = 7'000'000;
constexpr int64_t kMillisecond_us = 1000;
constexpr int64_t kFrom_us = 1'795'352'399'987'654; /* a time of day */
constexpr const char *kCamera = "Hof \xC3\xBC\xE5\xBA\xAD";

struct Times {
    std::vector<int64_t> video_us, sound_us;
    std::string sound_codec;
};

Times times_in(const std::string &path)
{
    Times times;
    AVFormatContext *format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) return times;
    avformat_find_stream_info(format, nullptr);
    AVPacket *packet = av_packet_alloc();
    while (av_read_frame(format, packet) >= 0) {
        const AVStream *stream = format->streams[packet->stream_index];
        const bool video = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        const int64_t at_us = av_rescale_q(packet->pts, stream->time_base, AVRational{1, 1'000'000});
        (video ? times.video_us : times.sound_us).push_back(at_us);
        if (!video) times.sound_codec = avcodec_get_name(stream->codecpar->codec_id);
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&format);
    return times;
}

struct SoundRow {
    const char *name;
    SoundFormat format;
    size_t packet_bytes;
    int64_t packet_us;
};

const SoundRow kSounds[] = {
    {"none", {}, 0, 0},
    {"pcm_alaw", {AV_CODEC_ID_PCM_ALAW, 8000, 1, {}}, 320, 40'000},
    {"pcm_mulaw", {AV_CODEC_ID_PCM_MULAW, 8000, 1, {}}, 160, 20'000},
    {"aac", {AV_CODEC_ID_AAC, 16'000, 1, {0x14, 0x08}}, 200, 64'000}, /* low complexity, 16 kHz, mono */
    {"opus", {AV_CODEC_ID_OPUS, 48'000, 1, {}}, 81, 20'000}, /* two frames of 40 bytes, says the first byte */
};

/* An index that is made from the files has what the recorder's own would have. */
void expect_index_has_it(const std::string &directory)
{
    Index index;
    ASSERT_EQ(index.open(directory), "");
    const IntakeResult result = take_in(index, list_recordings(directory), {.repair = true});
    EXPECT_TRUE(result.lines.empty()) << result.lines.front();
    const auto rows = index.segments({});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].channel, 3);
    EXPECT_EQ(rows[0].camera, kCamera);
    EXPECT_EQ(rows[0].from_us, kFrom_us);
}

class NvrecContainer : public testing::TestWithParam<std::tuple<Container, size_t>>
{
};

/* Reordered pictures, a rate that changes, pauses of seconds, sound that sets in later. */
TEST_P(NvrecContainer, KeepsEveryTimeThatItWasGiven)
{
    const auto [container, row] = GetParam();
    const SoundRow &sound = kSounds[row];
    Input input(std::string(NVREC_CLIPS) + "/camera1.mkv");
    ASSERT_TRUE(input.open(std::chrono::seconds(10)));
    AccessUnit unit;
    ASSERT_EQ(input.read(&unit), Input::Read::kUnit);
    TrackFacts facts = {input.facts(), parameter_sets_of(unit.bytes, input.facts().codec), nullptr};
    if (row > 0) {
        ASSERT_TRUE(is_recordable(sound.format));
        facts.sound = std::make_shared<const SoundFormat>(completed(sound.format));
    }
    ContainerFile file;
    ASSERT_TRUE(file.open(container, facts, kOrigin_us, {kCamera, kFrom_us})) << file.error();

    std::vector<int64_t> video_us, sound_us;
    std::string bytes;
    uint64_t pictures = 0, sounds = 0;
    auto pass = [&](FileChunk chunk) {
        for (const FileChunk::Extent &extent : chunk.extents) {
            const auto at = static_cast<size_t>(extent.at);
            if (bytes.size() < at + extent.bytes.size()) bytes.resize(at + extent.bytes.size());
            std::copy(extent.bytes.begin(), extent.bytes.end(), bytes.begin() + extent.at);
        }
        pictures += chunk.pictures;
        sounds += chunk.sounds;
    };
    /* Frame n of the clip is shown 100 ms behind its place of decoding or later: stretched by the rate. */
    int64_t at_us = kOrigin_us, sound_at_us = kOrigin_us + 350'000;
    for (int number = 0; number < 200; ++number) {
        while (row > 0 && sound_at_us < at_us) {
            ASSERT_TRUE(file.write_sound(std::vector<uint8_t>(sound.packet_bytes, 0xD5), sound_at_us,
                                         sound.packet_us));
            pass(file.take_output());
            sound_us.push_back(sound_at_us - kOrigin_us);
            sound_at_us += sound.packet_us;
        }
        const int64_t shown_us = at_us + 100'000 + (unit.pts_us - unit.due_us);
        ASSERT_TRUE(file.write_video(unit.bytes, shown_us, at_us, unit.key)) << file.error();
        pass(file.take_output());
        video_us.push_back(shown_us - kOrigin_us);
        const bool slow = number / 25 % 2 == 1;
        at_us += slow ? 125'000 : 33'000;
        if (number == 77) at_us += 5'000'000;
        ASSERT_EQ(input.read(&unit), Input::Read::kUnit);
    }
    ASSERT_TRUE(file.close()) << file.error();
    pass(file.take_output());
    EXPECT_EQ(pictures, video_us.size());
    EXPECT_EQ(sounds, sound_us.size());

    ScratchDirectory scratch;
    const std::string path = scratch.file(segment_name(3, "main", kFrom_us) + file_ending(container));
    std::ofstream(path, std::ios::binary) << bytes;
    expect_index_has_it(scratch.path());
    Times times = times_in(path);
    ASSERT_EQ(times.video_us.size(), video_us.size());
    ASSERT_EQ(times.sound_us.size(), sound_us.size());
    for (size_t i = 0; i < video_us.size(); ++i)
        ASSERT_NEAR(static_cast<double>(times.video_us[i]), static_cast<double>(video_us[i]), kMillisecond_us)
            << "picture " << i;
    for (size_t i = 0; i < sound_us.size(); ++i)
        ASSERT_NEAR(static_cast<double>(times.sound_us[i]), static_cast<double>(sound_us[i]), kMillisecond_us)
            << "sound " << i;
    if (row > 0) {
        EXPECT_EQ(times.sound_codec, sound.name);
    }
}

/* A copy under another name is where that says, and a title alone makes nobody a camera. */
TEST(NvrecFileLabel, OfACopyElsewhereIsNotItsOwn)
{
    Input input(std::string(NVREC_CLIPS) + "/camera1.mkv");
    ASSERT_TRUE(input.open(std::chrono::seconds(10)));
    AccessUnit unit;
    ASSERT_EQ(input.read(&unit), Input::Read::kUnit);
    ScratchDirectory scratch;
    constexpr int64_t kWeek_us = int64_t{7} * 24 * 3600 * 1'000'000;
    for (const Container container : {Container::kMp4, Container::kMkv}) {
        ContainerFile file;
        ASSERT_TRUE(file.open(container,
                              {input.facts(), parameter_sets_of(unit.bytes, input.facts().codec), nullptr},
                              unit.due_us, {kCamera, kFrom_us}));
        ASSERT_TRUE(file.write_video(unit.bytes, unit.pts_us, unit.due_us, true));
        ASSERT_TRUE(file.close());
        std::ofstream stream(
            scratch.file(segment_name(0, "main", kFrom_us + kWeek_us) + file_ending(container)),
            std::ios::binary);
        for (const FileChunk::Extent &extent : file.take_output().extents) {
            stream.seekp(extent.at);
            stream.write(reinterpret_cast<const char *>(extent.bytes.data()),
                         static_cast<std::streamsize>(extent.bytes.size()));
        }
    }
    Index index;
    ASSERT_EQ(index.open(scratch.path()), "");
    take_in(index, list_recordings(scratch.path()), {.repair = true});
    const auto rows = index.segments({});
    ASSERT_EQ(rows.size(), 2u);
    for (const SegmentRow &row : rows) {
        EXPECT_EQ(row.camera, "") << row.path;
        EXPECT_EQ(row.from_us, (kFrom_us + kWeek_us) / 1'000'000 * 1'000'000) << row.path;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, NvrecContainer,
                         testing::Combine(testing::Values(Container::kMp4, Container::kMkv),
                                          testing::Range(size_t{0}, std::size(kSounds))),
                         [](const auto &named) {
                             return std::string(file_ending(std::get<0>(named.param)) + 1) + "_" +
                                    kSounds[std::get<1>(named.param)].name;
                         });

TEST(NvrecSound, OnlyWhatAFileHasAPlaceForIsKeptAsSent)
{
    EXPECT_FALSE(is_recordable({AV_CODEC_ID_ADPCM_G726, 8000, 1, {}}));
    EXPECT_FALSE(is_recordable({AV_CODEC_ID_AAC, 16'000, 1, {}})) << "without its description";
    EXPECT_FALSE(is_recordable({AV_CODEC_ID_OPUS, 48'000, 6, {}})) << "nobody knows the channels' order";
    EXPECT_FALSE(is_recordable({AV_CODEC_ID_PCM_ALAW, 0, 1, {}}));
    EXPECT_TRUE(is_recordable(*pool_sound_format()));
}

} // namespace
