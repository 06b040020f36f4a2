/* The recorder's inputs: whole Annex B access units with their times, from every kind of file. */
#include <chrono>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "camera/input.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

constexpr auto kLimit = 10s;
constexpr size_t kFrames = 60;
constexpr size_t kKeyInterval = 20;

std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

std::vector<uint8_t> file_bytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/* NAL unit types of an Annex B access unit. */
std::multiset<int> unit_types(const std::vector<uint8_t> &bytes, Codec codec)
{
    std::multiset<int> types;
    for (size_t i = 0; i + 3 < bytes.size(); ++i) {
        if (bytes[i] != 0 || bytes[i + 1] != 0 || bytes[i + 2] != 1) continue;
        types.insert(codec == Codec::kH264 ? bytes[i + 3] & 0x1f : bytes[i + 3] >> 1 & 0x3f);
    }
    return types;
}

std::vector<AccessUnit> read_all(Input &input)
{
    std::vector<AccessUnit> units;
    AccessUnit unit;
    while (input.read(&unit) == Input::Read::kUnit)
        units.push_back(unit);
    return units;
}

struct FileCase {
    const char *name;
    Codec codec;
};

void PrintTo(const FileCase &file, std::ostream *out)
{
    *out << file.name;
}

class NvrecInput : public testing::TestWithParam<FileCase>
{
};

TEST_P(NvrecInput, DeliversEveryPictureAsOneUnitThatADecoderTakesAsItIs)
{
    Input input(clip(GetParam().name));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    EXPECT_EQ(input.facts().codec, GetParam().codec);
    EXPECT_EQ(input.facts().width_px, 320u);
    EXPECT_EQ(input.facts().height_px, 180u);
    EXPECT_DOUBLE_EQ(input.facts().frame_rate, 30.0);

    const std::vector<AccessUnit> units = read_all(input);
    ASSERT_EQ(units.size(), kFrames);
    size_t keys = 0;
    for (const AccessUnit &unit : units) {
        ASSERT_GE(unit.bytes.size(), 4u);
        EXPECT_TRUE(unit.bytes[0] == 0 && unit.bytes[1] == 0 && (unit.bytes[2] == 1 || unit.bytes[3] == 1));
        const std::multiset<int> types = unit_types(unit.bytes, GetParam().codec);
        if (unit.key) {
            ++keys;
            /* Sequence and picture parameter sets, so that a decoder can begin here. */
            for (const int type : GetParam().codec == Codec::kH264 ? std::set{7, 8} : std::set{32, 33, 34})
                EXPECT_TRUE(types.contains(type)) << "parameter set " << type;
        }
    }
    EXPECT_TRUE(units[0].key);
    EXPECT_EQ(keys, kFrames / kKeyInterval);
}

TEST_P(NvrecInput, UnitsAreDueAtTheStreamsOwnFrameRate)
{
    Input input(clip(GetParam().name));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    const std::vector<AccessUnit> units = read_all(input);
    ASSERT_EQ(units.size(), kFrames);
    for (size_t i = 0; i < units.size(); ++i)
        EXPECT_NEAR(static_cast<double>(units[i].due_us), static_cast<double>(i) * 1e6 / 30, 1000)
            << "unit " << i;
}

TEST_P(NvrecInput, GoesBackToItsStartAndItsTimeGoesOn)
{
    Input input(clip(GetParam().name));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    const std::vector<AccessUnit> first = read_all(input);
    ASSERT_TRUE(input.rewind()) << input.error();
    const std::vector<AccessUnit> second = read_all(input);
    ASSERT_EQ(second.size(), first.size());
    for (size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].bytes, second[i].bytes) << "unit " << i;
        EXPECT_NEAR(static_cast<double>(second[i].due_us - first[i].due_us), 2e6, 1000);
    }
}

TEST(NvrecInputs, ElementaryStreamsLoseNoByte)
{
    for (const char *name : {"plain.h264", "reordered.h264", "reordered.h265"}) {
        Input input(clip(name));
        ASSERT_TRUE(input.open(kLimit)) << input.error();
        std::vector<uint8_t> bytes;
        for (const AccessUnit &unit : read_all(input))
            bytes.insert(bytes.end(), unit.bytes.begin(), unit.bytes.end());
        EXPECT_EQ(bytes, file_bytes(clip(name))) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, NvrecInput,
    testing::Values(FileCase{"plain.h264", Codec::kH264}, FileCase{"reordered.h264", Codec::kH264},
                    FileCase{"reordered.h265", Codec::kH265}, FileCase{"h264.mp4", Codec::kH264},
                    FileCase{"h264.mkv", Codec::kH264}, FileCase{"h265.mp4", Codec::kH265},
                    FileCase{"h265.mkv", Codec::kH265}));

TEST(NvrecInputs, FollowAChangeOfPictureSize)
{
    Input input(clip("resized.h264"));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    AccessUnit unit;
    for (size_t i = 0; i < kFrames; ++i)
        ASSERT_EQ(input.read(&unit), Input::Read::kUnit);
    EXPECT_EQ(input.facts().width_px, 320u);
    ASSERT_EQ(input.read(&unit), Input::Read::kUnit);
    EXPECT_EQ(input.facts().width_px, 640u);
    EXPECT_EQ(input.facts().height_px, 360u);
}

TEST(NvrecInputs, SoundComesWithItsPicturesWhereverItLiesInTheFile)
{
    Input input(clip("fragments.mov"));
    input.want_sound();
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    constexpr int64_t kSeek_us = 2'500'000; /* in the second of its two fragments */
    constexpr int64_t kLength_us = 4'000'000;
    AccessUnit unit;
    for (const bool sought : {false, true}) {
        ASSERT_TRUE(sought ? input.seek(kSeek_us, &unit) : input.read(&unit) == Input::Read::kUnit);
        int64_t heard_us = unit.due_us;
        for (Input::Read result = Input::Read::kUnit; result == Input::Read::kUnit;
             result = input.read(&unit)) {
            for (const SoundBlock &block : input.take_sound(unit.due_us)) {
                EXPECT_NEAR(static_cast<double>(block.pts_us), static_cast<double>(heard_us), 10'000);
                heard_us = block.pts_us + kSoundBlock_us;
            }
            EXPECT_GT(heard_us, unit.due_us) << "sound of the picture at " << unit.due_us;
        }
        for (const SoundBlock &block : input.take_sound(INT64_MAX))
            heard_us = block.pts_us + kSoundBlock_us;
        EXPECT_NEAR(static_cast<double>(heard_us), static_cast<double>(kLength_us), 2.0 * kSoundBlock_us);
    }
}

TEST(NvrecInputs, HonourTheBeginningThatAnEditListNames)
{
    constexpr size_t kBefore = 10, kShown = 30;
    Input input(clip("edited.mp4"));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    for (const bool again : {false, true}) {
        ASSERT_TRUE(!again || input.rewind()) << input.error();
        const std::vector<AccessUnit> units = read_all(input);
        ASSERT_EQ(units.size(), kBefore + kShown);
        EXPECT_TRUE(units[0].key);
        for (size_t i = 0; i <= kBefore; ++i)
            EXPECT_EQ(units[i].due_us, units[0].due_us) << "unit " << i << " is only decoded for others";
        EXPECT_NEAR(static_cast<double>(units.back().due_us - units[0].due_us), 1e6 * (kShown - 1) / 30,
                    1000);
    }
}

TEST(NvrecInputs, JoinedTransportStreamsGoOnOnePictureLater)
{
    Input input(clip("joined.ts"));
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    const std::vector<AccessUnit> units = read_all(input);
    ASSERT_GE(units.size(), 3 * kFrames - 4); /* a picture may be lost at a joint */
    for (size_t i = 1; i < units.size(); ++i)
        EXPECT_NEAR(static_cast<double>(units[i].due_us - units[i - 1].due_us), 1e6 / 30, 1000)
            << "unit " << i;
}

TEST(NvrecInputs, HandOutSoundAsItCame)
{
    Input input(clip("long_sound.mp4"));
    input.want_sound();
    ASSERT_TRUE(input.open(kLimit)) << input.error();
    AccessUnit unit;
    while (input.read(&unit) == Input::Read::kUnit) {
    }
    const std::vector<SoundPacket> packets = input.take_sound_packets(INT64_MAX);
    ASSERT_GE(packets.size(), 40u);
    int64_t end_us = packets.front().pts_us;
    for (const SoundPacket &packet : packets) {
        EXPECT_NEAR(static_cast<double>(packet.pts_us), static_cast<double>(end_us), 100);
        EXPECT_FALSE(packet.bytes.empty());
        ASSERT_TRUE(packet.codec);
        end_us = packet.pts_us + packet.duration_us;
    }
    EXPECT_NEAR(static_cast<double>(end_us), 3e6, 100'000);
    const SoundCodec &codec = *packets.front().codec;
    EXPECT_EQ(codec.rate_hz, 16000);
    EXPECT_EQ(codec.channels, 1);
    EXPECT_FALSE(codec.extradata.empty()) << "what a container needs of AAC";
    EXPECT_EQ(packets.front().codec, packets.back().codec);
}

TEST(NvrecInputs, SayWhyTheyCannotBeOpened)
{
    const struct {
        std::string address;
        const char *reason;
    } cases[] = {
        {clip("absent.mp4"), "No such file"},
        {clip("empty.h264"), "no picture"},
        {clip("zeros.h264"), "cannot read its streams"},
        {clip("sound.wav"), "carries no video"},
        {clip("motion_jpeg.mkv"), "mjpeg"},
        {NVREC_CLIPS, "cannot open"},
        {"rtsp://127.0.0.1:1/camera", "refused"},
        {"rtsp://nowhere.invalid/camera", "the name nowhere.invalid does not resolve"},
        {"", "cannot open"},
    };
    for (const auto &[address, reason] : cases) {
        Input input(address);
        EXPECT_FALSE(input.open(kLimit)) << address;
        EXPECT_NE(input.error().find(reason), std::string::npos) << address << ": " << input.error();
        AccessUnit unit;
        EXPECT_EQ(input.read(&unit), Input::Read::kFailed);
        EXPECT_FALSE(input.rewind());
    }
}

TEST(NvrecInputs, AnInterruptedInputDeliversNothingMore)
{
    Input input(clip("plain.h264"));
    ASSERT_TRUE(input.open(kLimit));
    input.interrupt();
    AccessUnit unit;
    EXPECT_EQ(input.read(&unit), Input::Read::kInterrupted);
    EXPECT_FALSE(input.open(kLimit));
}

} // namespace
