/* stream_codecs.cpp - see stream_codecs.h. */
#include "host/stream_codecs.h"

#include <iterator>

namespace vboard
{
namespace
{

constexpr CodecTraits kCodecs[] = {
    {StreamCodec::h264, AV_CODEC_ID_H264, 0, 0x1f, 6, 12, true},
    {StreamCodec::h265, AV_CODEC_ID_HEVC, 1, 0x3f, 32, 40, false},
    {StreamCodec::jpeg, AV_CODEC_ID_MJPEG, 0, 0, 0, 0, false},
};

consteval bool codecs_stand_by_number()
{
    for (size_t row = 0; row < std::size(kCodecs); ++row)
        if (kCodecs[row].codec != static_cast<StreamCodec>(row)) return false;
    return std::size(kCodecs) == kStreamCodecs;
}
static_assert(codecs_stand_by_number());

} // namespace

const CodecTraits &traits_of(StreamCodec codec)
{
    return kCodecs[static_cast<size_t>(codec)];
}

bool holds_only_side_data(const CodecTraits &traits, const uint8_t *bytes, size_t size)
{
    if (traits.type_mask == 0) return false;
    unsigned units = 0;
    for (size_t at = 0; at + 3 < size; ++at) {
        if (bytes[at] != 0 || bytes[at + 1] != 0 || bytes[at + 2] != 1) continue;
        const unsigned type = bytes[at + 3] >> traits.type_shift & traits.type_mask;
        if (type < traits.first_side || type > traits.last_side) return false;
        ++units;
        at += 3;
    }
    return units > 0;
}

} // namespace vboard
