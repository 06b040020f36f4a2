/* h264_headers.cpp - a reader of sequence parameter sets (ITU-T H.264, 7.3.2.1.1 and E.1.1). */
#include "host/h264_headers.h"

#include <algorithm>
#include <vector>

namespace vboard
{
namespace
{

constexpr unsigned kSliceUnit = 1;
constexpr unsigned kIdrUnit = 5;
constexpr unsigned kSequenceUnit = 7;
constexpr size_t kMostHeaderBytes = 1024; // a parameter set is far smaller
constexpr unsigned kExtendedSample = 255; // aspect ratio as two numbers

/*
 * Bits of a payload up to the next start code, from which the emulation prevention bytes are gone. Past
 * the end come zeros.
 */
class BitReader
{
public:
    BitReader(const uint8_t *bytes, size_t size)
    {
        unsigned zeros = 0;
        for (size_t at = 0; at < std::min(size, kMostHeaderBytes); ++at) {
            if (zeros >= 2 && bytes[at] == 3) {
                zeros = 0;
                continue;
            }
            if (zeros >= 2 && bytes[at] == 1) break;
            zeros = bytes[at] == 0 ? zeros + 1 : 0;
            payload_.push_back(bytes[at]);
        }
        while (!payload_.empty() && payload_.back() == 0) // a unit ends in a bit that is set
            payload_.pop_back();
    }

    unsigned bits(unsigned count)
    {
        unsigned value = 0;
        for (; count > 0; --count)
            value = value << 1 | bit();
        return value;
    }

    bool flag() { return bit() != 0; }

    // ue(v)
    unsigned unsigned_golomb()
    {
        unsigned zeros = 0;
        while (zeros < 32 && !overrun() && bit() == 0)
            ++zeros;
        return zeros >= 32 ? 0 : (1u << zeros) - 1 + bits(zeros);
    }

    // se(v)
    int signed_golomb()
    {
        const unsigned code = unsigned_golomb();
        const int magnitude = static_cast<int>(code / 2 + code % 2);
        return code % 2 != 0 ? magnitude : -magnitude;
    }

    bool overrun() const { return position_ > payload_.size() * 8; }

private:
    unsigned bit()
    {
        const size_t at = position_++;
        return at / 8 < payload_.size() ? payload_[at / 8] >> (7 - at % 8) & 1u : 0;
    }

    std::vector<uint8_t> payload_;
    size_t position_ = 0;
};

bool has_chroma_format(unsigned profile)
{
    constexpr unsigned kProfiles[] = {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244};
    return std::find(std::begin(kProfiles), std::end(kProfiles), profile) != std::end(kProfiles);
}

// Profiles of which constraint_set3_flag makes an intra profile: nothing is ever reordered.
bool is_intra_only(unsigned profile, unsigned constraints)
{
    constexpr unsigned kProfiles[] = {44, 86, 100, 110, 122, 244};
    return (constraints & 0x10) != 0 &&
           std::find(std::begin(kProfiles), std::end(kProfiles), profile) != std::end(kProfiles);
}

void skip_scaling_list(BitReader &reader, int size)
{
    // Only the lowest eight bits count, so a step of any size may wrap around.
    unsigned last = 8;
    unsigned next = 8;
    for (int i = 0; i < size && next != 0; ++i) {
        next = (last + static_cast<unsigned>(reader.signed_golomb())) % 256;
        if (next != 0) last = next;
    }
}

void skip_chroma_format(BitReader &reader)
{
    const unsigned format = reader.unsigned_golomb();
    if (format == 3) reader.flag(); // separate_colour_plane_flag
    reader.unsigned_golomb();       // bit depths
    reader.unsigned_golomb();
    reader.flag();              // qpprime_y_zero_transform_bypass_flag
    if (!reader.flag()) return; // seq_scaling_matrix_present_flag
    const int lists = format == 3 ? 12 : 8;
    for (int list = 0; list < lists; ++list)
        if (reader.flag()) skip_scaling_list(reader, list < 6 ? 16 : 64);
}

void skip_order_count_cycle(BitReader &reader)
{
    reader.flag(); // delta_pic_order_always_zero_flag
    reader.signed_golomb();
    reader.signed_golomb();
    for (unsigned left = std::min(reader.unsigned_golomb(), 255u); left > 0; --left)
        reader.signed_golomb();
}

void skip_hypothetical_decoder(BitReader &reader)
{
    const unsigned buffers = std::min(reader.unsigned_golomb(), 31u) + 1;
    reader.bits(8); // bit_rate_scale, cpb_size_scale
    for (unsigned buffer = 0; buffer < buffers; ++buffer) {
        reader.unsigned_golomb();
        reader.unsigned_golomb();
        reader.flag();
    }
    reader.bits(20); // lengths of delays
}

// max_num_reorder_frames of the usability information; none when it is not stated.
std::optional<unsigned> stated_reorder(BitReader &reader)
{
    if (reader.flag() && reader.bits(8) == kExtendedSample) reader.bits(32);
    if (reader.flag()) reader.flag(); // overscan
    if (reader.flag()) {              // video signal type
        reader.bits(4);
        if (reader.flag()) reader.bits(24); // colour description
    }
    if (reader.flag()) { // chroma location
        reader.unsigned_golomb();
        reader.unsigned_golomb();
    }
    if (reader.flag()) { // timing
        reader.bits(32);
        reader.bits(32);
        reader.flag();
    }
    const bool nal_hrd = reader.flag();
    if (nal_hrd) skip_hypothetical_decoder(reader);
    const bool vcl_hrd = reader.flag();
    if (vcl_hrd) skip_hypothetical_decoder(reader);
    if (nal_hrd || vcl_hrd) reader.flag();   // low_delay_hrd_flag
    reader.flag();                           // pic_struct_present_flag
    if (!reader.flag()) return std::nullopt; // bitstream_restriction_flag
    reader.flag();
    for (int skipped = 0; skipped < 4; ++skipped)
        reader.unsigned_golomb();
    return reader.unsigned_golomb();
}

// MaxDpbMbs of the levels (table A-1), in macroblocks.
unsigned buffer_macroblocks(unsigned level)
{
    struct Row {
        unsigned highest_level, macroblocks;
    };
    constexpr Row kRows[] = {{10, 396},   {11, 900},   {20, 2376},  {21, 4752},   {30, 8100},   {31, 18000},
                             {32, 20480}, {41, 32768}, {42, 34816}, {50, 110400}, {52, 184320}, {62, 696320}};
    const auto *row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const Row &one) { return level <= one.highest_level; });
    return row != std::end(kRows) ? row->macroblocks : 0;
}

std::optional<H264Sequence> read_sequence(const uint8_t *bytes, size_t size)
{
    BitReader reader(bytes, size);
    H264Sequence sequence;
    const unsigned profile = reader.bits(8);
    const unsigned constraints = reader.bits(8);
    const unsigned level = reader.bits(8);
    reader.unsigned_golomb(); // seq_parameter_set_id
    if (has_chroma_format(profile)) skip_chroma_format(reader);
    reader.unsigned_golomb(); // log2_max_frame_num_minus4
    sequence.order_count_type = reader.unsigned_golomb();
    if (sequence.order_count_type == 0) reader.unsigned_golomb();
    if (sequence.order_count_type == 1) skip_order_count_cycle(reader);
    reader.unsigned_golomb(); // max_num_ref_frames
    reader.flag();
    const uint64_t width = uint64_t{reader.unsigned_golomb()} + 1; // macroblocks
    const uint64_t map_height = uint64_t{reader.unsigned_golomb()} + 1;
    const bool frames_only = reader.flag();
    if (!frames_only) reader.flag(); // mb_adaptive_frame_field_flag
    reader.flag();                   // direct_8x8_inference_flag
    if (reader.flag())               // cropping
        for (int side = 0; side < 4; ++side)
            reader.unsigned_golomb();
    if (reader.flag()) sequence.reorder = stated_reorder(reader);
    if (reader.overrun()) return std::nullopt;
    if (!sequence.reorder && is_intra_only(profile, constraints)) sequence.reorder = 0;
    const uint64_t macroblocks = width * map_height * (frames_only ? 1 : 2);
    const unsigned held = buffer_macroblocks(level);
    if (held != 0)
        sequence.decoded_picture_buffer =
            static_cast<unsigned>(std::clamp<uint64_t>(held / std::max<uint64_t>(macroblocks, 1), 1, 16));
    return sequence;
}

} // namespace

H264UnitHeaders read_h264_headers(const uint8_t *bytes, size_t size)
{
    H264UnitHeaders headers;
    for (size_t at = 0; at + 3 < size; ++at) {
        if (bytes[at] != 0 || bytes[at + 1] != 0 || bytes[at + 2] != 1) continue;
        const unsigned type = bytes[at + 3] & 0x1fu;
        at += 3;
        if (type >= kSliceUnit && type <= kIdrUnit) {
            headers.has_slice = true;
            headers.is_idr = type == kIdrUnit;
            return headers;
        }
        if (type != kSequenceUnit) continue;
        const auto sequence = read_sequence(bytes + at + 1, size - at - 1);
        if (sequence) headers.sequence = sequence;
    }
    return headers;
}

} // namespace vboard
