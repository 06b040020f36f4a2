/*
 * order_test.cpp - pictures that are decoded in another order than they are shown in, in streams
 * that state their reordering and in the same streams without that statement. What comes out is
 * compared with ffmpeg's own decoding of the same bytes.
 */
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "board_rig.h"
#include "host/stream_decoder.h"

using namespace rig;

namespace
{

constexpr int kWidth = 320;
constexpr int kHeight = 180;

/* Bits of a sequence parameter set of x264, which needs no emulation prevention in its first bytes. */
class Bits
{
public:
    explicit Bits(const Bytes &bytes) : bytes_(bytes) {}

    unsigned take(unsigned count = 1)
    {
        unsigned value = 0;
        for (; count > 0; --count, ++position_)
            value = value << 1 | (bytes_.at(position_ / 8) >> (7 - position_ % 8) & 1u);
        return value;
    }

    unsigned golomb()
    {
        unsigned zeros = 0;
        while (take() == 0)
            ++zeros;
        return (1u << zeros) - 1 + take(zeros);
    }

    size_t position() const { return position_; }

private:
    const Bytes &bytes_;
    size_t position_ = 0;
};

// Where a set's vui_parameters_present_flag stands. 4:2:0, no scaling lists, as x264 writes them.
size_t usability_flag(const Bytes &set)
{
    Bits bits(set);
    const unsigned profile = bits.take(8);
    bits.take(16);
    bits.golomb();
    if (profile >= 100) {
        if (bits.golomb() != 1 || bits.golomb() != 0 || bits.golomb() != 0 || bits.take(2) != 0)
            throw std::runtime_error("not a parameter set that this test can rewrite");
    }
    bits.golomb();
    if (bits.golomb() == 0) bits.golomb();
    bits.golomb();
    bits.take();
    bits.golomb();
    bits.golomb();
    if (bits.take() == 0) bits.take();
    bits.take();
    if (bits.take() != 0)
        for (int side = 0; side < 4; ++side)
            bits.golomb();
    return bits.position();
}

// The set cut off behind that flag, which becomes 0: nothing is stated about reordering.
Bytes without_usability(const Bytes &set)
{
    const size_t flag = usability_flag(set);
    Bytes cut(set.begin(), set.begin() + static_cast<ptrdiff_t>((flag + 2 + 7) / 8));
    const auto put = [&](size_t at, bool value) {
        const auto mask = static_cast<uint8_t>(0x80u >> at % 8);
        cut[at / 8] = static_cast<uint8_t>(value ? cut[at / 8] | mask : cut[at / 8] & ~mask);
    };
    put(flag, false);
    put(flag + 1, true); // rbsp_stop_one_bit
    for (size_t at = flag + 2; at < cut.size() * 8; ++at)
        put(at, false);
    return cut;
}

size_t next_start_code(const Bytes &bytes, size_t at)
{
    for (; at + 3 <= bytes.size(); ++at)
        if (bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 1) return at;
    return bytes.size();
}

// A stream whose parameter sets say nothing of reordering, as many cameras send it.
Stream with_silent_parameters(Stream stream)
{
    for (Bytes &frame : stream.frames) {
        Bytes rewritten;
        for (size_t at = 0; at < frame.size();) {
            const size_t payload = at + 3;
            const bool is_unit = next_start_code(frame, at) == at;
            const size_t end = next_start_code(frame, at + 1);
            if (is_unit && (frame[payload] & 0x1f) == 7) {
                const Bytes set(frame.begin() + static_cast<ptrdiff_t>(payload) + 1,
                                frame.begin() + static_cast<ptrdiff_t>(end));
                const Bytes silent = without_usability(set);
                rewritten.insert(rewritten.end(), frame.begin() + static_cast<ptrdiff_t>(at),
                                 frame.begin() + static_cast<ptrdiff_t>(payload) + 1);
                rewritten.insert(rewritten.end(), silent.begin(), silent.end());
            } else {
                rewritten.insert(rewritten.end(), frame.begin() + static_cast<ptrdiff_t>(at),
                                 frame.begin() + static_cast<ptrdiff_t>(end));
            }
            at = end;
        }
        frame = std::move(rewritten);
    }
    return stream;
}

struct Decoded {
    std::vector<Bytes> pictures;
    std::vector<size_t> behind; // after every send but the last: sends without a picture yet
    vboard::DecodeReport report;

    size_t most_behind() const { return *std::max_element(behind.begin(), behind.end()); }
};

// Through the board's decoder: a frame a send, or a byte stream of cut sends.
Decoded decode(const Stream &stream, bool whole_frames)
{
    const auto codec =
        stream.codec == MI_VDEC_CODEC_H265 ? vboard::StreamCodec::h265 : vboard::StreamCodec::h264;
    const auto decoder = vboard::StreamDecoder::open(codec, whole_frames);
    Decoded decoded;
    const auto take = [&](const vboard::PicturePtr &picture) {
        Bytes bytes;
        for (int plane = 0; plane < 3; ++plane)
            for (int row = 0; row < picture->view.height >> (plane > 0 ? 1 : 0); ++row) {
                const uint8_t *from =
                    picture->view.plane[plane] + static_cast<ptrdiff_t>(row) * picture->view.stride[plane];
                bytes.insert(bytes.end(), from, from + (picture->view.width >> (plane > 0 ? 1 : 0)));
            }
        decoded.pictures.push_back(std::move(bytes));
        return true;
    };
    size_t sent = 0;
    for (const Bytes &frame : stream.frames) {
        const vboard::EncodedBytes bytes(frame.data(), frame.size());
        const bool last = ++sent == stream.frames.size();
        const vboard::DecodeReport report = decoder->decode(bytes, sent, false, last, take);
        decoded.report.errors += report.errors;
        decoded.report.withheld += report.withheld;
        decoded.report.late += report.late;
        if (!last) decoded.behind.push_back(sent - decoded.pictures.size());
    }
    return decoded;
}

struct ClosePipe {
    void operator()(FILE *pipe) const { pclose(pipe); }
};

// All pictures that ffmpeg makes of the bytes, in the order in which it shows them.
std::vector<Bytes> ffmpeg_decode(const Stream &stream)
{
    const std::string path = testing::TempDir() + "vboard_" + std::to_string(getpid()) + "_order";
    {
        std::ofstream file(path, std::ios::binary);
        const Bytes all = stream.joined();
        file.write(reinterpret_cast<const char *>(all.data()), static_cast<std::streamsize>(all.size()));
    }
    const std::string format = stream.codec == MI_VDEC_CODEC_H265 ? "hevc" : "h264";
    const std::string command = "ffmpeg -nostdin -v error -f " + format + " -i " + path +
                                " -fps_mode passthrough -pix_fmt yuv420p -f rawvideo -";
    std::vector<Bytes> pictures;
    const std::unique_ptr<FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
    Bytes picture(size_t{kWidth} * kHeight * 3 / 2);
    while (pipe != nullptr && fread(picture.data(), 1, picture.size(), pipe.get()) == picture.size())
        pictures.push_back(picture);
    remove(path.c_str());
    return pictures;
}

struct OrderCase {
    const char *stream;
    size_t behind;        // frames that the decoder may hold back at any time
    size_t stated_behind; // and when the stream states its reordering, which is held from the start

    friend void PrintTo(const OrderCase &tested, std::ostream *out) { *out << tested.stream; }
};

class PictureOrder : public testing::TestWithParam<OrderCase>
{
};

TEST_P(PictureOrder, EveryPictureComesOutInTheOrderOfFfmpegWhenNothingIsStated)
{
    const Stream stream = with_silent_parameters(load_stream(GetParam().stream));
    const std::vector<Bytes> expected = ffmpeg_decode(stream);
    ASSERT_EQ(expected.size(), stream.frames.size());
    for (const bool whole_frames : {true, false}) {
        const Decoded decoded = decode(stream, whole_frames);
        EXPECT_EQ(decoded.report.late, 0u);
        EXPECT_EQ(decoded.report.errors, 0u);
        EXPECT_LE(decoded.most_behind(), GetParam().behind + (whole_frames ? 0 : 1));
        ASSERT_EQ(decoded.pictures.size(), expected.size());
        for (size_t number = 0; number < expected.size(); ++number)
            ASSERT_TRUE(decoded.pictures[number] == expected[number]) << "picture " << number;
    }
}

TEST_P(PictureOrder, EveryPictureComesOutInTheOrderOfFfmpegWhenItIsStated)
{
    const Stream stream = load_stream(GetParam().stream);
    const std::vector<Bytes> expected = ffmpeg_decode(stream);
    ASSERT_EQ(expected.size(), stream.frames.size());
    const Decoded decoded = decode(stream, true);
    EXPECT_EQ(decoded.report.late, 0u);
    EXPECT_LE(decoded.most_behind(), GetParam().stated_behind);
    ASSERT_EQ(decoded.pictures.size(), expected.size());
    for (size_t number = 0; number < expected.size(); ++number)
        ASSERT_TRUE(decoded.pictures[number] == expected[number]) << "picture " << number;
}

INSTANTIATE_TEST_SUITE_P(Streams, PictureOrder,
                         testing::Values(OrderCase{"order_none", 0, 0}, OrderCase{"order_none_type_0", 0, 0},
                                         OrderCase{"order_intra", 0, 0}, OrderCase{"order_flat", 1, 1},
                                         OrderCase{"order_pyramid", 2, 2}, OrderCase{"order_adaptive", 2, 2},
                                         OrderCase{"order_open_gop", 2, 2}, OrderCase{"order_slices", 2, 2},
                                         OrderCase{"order_interlaced", 2, 2}));

// A stream that lost every frame that no other frame needs.
Stream with_references_only(Stream stream)
{
    std::erase_if(stream.frames, [](const Bytes &frame) {
        const size_t unit = next_start_code(frame, 0) + 3;
        return (frame.at(unit) & 0x60) == 0; // nal_ref_idc
    });
    return stream;
}

// What is left is shown, without a growing delay, and nothing is taken for late.
TEST(PictureOrderWithLosses, HolesInTheOrderHoldNothingBackForLong)
{
    const Stream stream = with_references_only(with_silent_parameters(load_stream("order_pyramid")));
    ASSERT_LT(stream.frames.size(), 40u);
    const std::vector<Bytes> expected = ffmpeg_decode(stream);
    const Decoded decoded = decode(stream, true);
    EXPECT_TRUE(decoded.pictures == expected);
    EXPECT_EQ(decoded.pictures.size(), stream.frames.size());
    EXPECT_EQ(decoded.report.late, 0u);
    EXPECT_LE(decoded.most_behind(), 3u);
}

TEST(PictureOrderWithLosses, TheDelayThatHolesMadeEndsAtAnIdrPicture)
{
    const Stream stream = with_references_only(with_silent_parameters(load_stream("order_flat")));
    const std::vector<Bytes> expected = ffmpeg_decode(stream);
    const Decoded decoded = decode(stream, true);
    EXPECT_TRUE(decoded.pictures == expected);
    EXPECT_EQ(decoded.pictures.size(), stream.frames.size());
    EXPECT_LE(decoded.most_behind(), 2u);
    size_t idr_pictures = 0;
    for (size_t frame = 0; frame + 1 < stream.frames.size(); ++frame) {
        const bool is_idr =
            (stream.frames[frame].at(next_start_code(stream.frames[frame], 0) + 3) & 0x1f) == 7;
        if (!is_idr) continue; // its access unit begins with the parameter sets
        ++idr_pictures;
        EXPECT_EQ(decoded.behind[frame], 0u) << "frame " << frame;
    }
    EXPECT_EQ(idr_pictures, 3u);
}

// libavcodec gives no picture for some frames behind a lost IDR picture, and reports no error.
TEST(PictureOrderWithLosses, WhatTheDecoderSwallowsIsCounted)
{
    for (Stream stream : {load_stream("order_none"), with_silent_parameters(load_stream("order_none"))}) {
        stream.frames.erase(stream.frames.begin() + 20); // an IDR picture
        const std::vector<Bytes> expected = ffmpeg_decode(stream);
        ASSERT_LT(expected.size(), stream.frames.size());
        const Decoded decoded = decode(stream, true);
        EXPECT_TRUE(decoded.pictures == expected);
        EXPECT_EQ(decoded.report.errors, 0u);
        EXPECT_EQ(decoded.report.late, stream.frames.size() - expected.size());
        EXPECT_EQ(decoded.report.withheld, 0u);
    }
}

// A stream that is joined in its middle, with its parameter sets at hand.
TEST(PictureOrderWithLosses, WhatComesBeforeTheFirstKeyFrameIsWithheld)
{
    Stream stream = with_silent_parameters(load_stream("order_none"));
    Bytes &first = stream.frames.front();
    size_t slice = next_start_code(first, 0);
    while ((first.at(slice + 3) & 0x1f) != 5)
        slice = next_start_code(first, slice + 1);
    first.resize(slice);
    const Decoded decoded = decode(stream, true);
    EXPECT_EQ(decoded.pictures.size(), 40u); // from the second IDR picture on
    EXPECT_EQ(decoded.report.withheld, 19u);
    EXPECT_EQ(decoded.report.late, 0u);
}

class LatePictures : public Board
{
};

TEST_F(LatePictures, AreCountedByTheirChannel)
{
    const Stream stream = with_silent_parameters(load_stream("order_flat"));
    power_up();
    start_channel(0, stream.codec);
    // Frames 1, 4, 7, 10 and 13 are decoded before the B-frames in front of them; of these only frame 3
    // comes, when frame 1, which is shown after it, has been shown.
    for (const size_t frame : {0u, 1u, 4u, 7u, 3u, 10u, 13u})
        send_and_settle(0, stream.frames.at(frame));
    EXPECT_EQ(counters(0).late, 1u);
    EXPECT_EQ(counters(0).decode_errors, 0u);
    EXPECT_EQ(counters(0).damaged, 0u);
    EXPECT_EQ(counters(0).decoded, 3u); // and three are held back
}

TEST(PictureOrderOfH265, IsAlwaysStatedAndKept)
{
    const Stream stream = load_stream("order_h265_pyramid");
    const std::vector<Bytes> expected = ffmpeg_decode(stream);
    ASSERT_EQ(expected.size(), stream.frames.size());
    const Decoded decoded = decode(stream, true);
    EXPECT_TRUE(decoded.pictures == expected);
    EXPECT_EQ(decoded.report.late, 0u);
}

} // namespace
