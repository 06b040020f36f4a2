/* codec.cpp - see codec.h. */
#include "camera/codec.h"

#include <array>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace nvrec
{
namespace
{

constexpr std::array<uint8_t, 6> kDelimiterH264 = {0, 0, 0, 1, 9, 0xF0};
constexpr std::array<uint8_t, 7> kDelimiterH265 = {0, 0, 0, 1, 0x46, 1, 0x50};

/* Four letters in the order in which they stand in a file. */
constexpr uint32_t tag(const char (&letters)[5])
{
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = value << 8 | static_cast<uint8_t>(letters[i]);
    return value;
}

constexpr CodecTraits kCodecs[] = {
    {.codec = Codec::kH264,
     .name = "H.264",
     .av_id = AV_CODEC_ID_H264,
     .to_annexb = "h264_mp4toannexb",
     .mp4_tag = tag("avc1"),
     .type_shift = 0,
     .type_mask = 0x1f,
     .first_parameter_set = 7, /* sequence, then picture */
     .last_parameter_set = 8,
     .delimiter = kDelimiterH264},
    {.codec = Codec::kH265,
     .name = "H.265",
     .av_id = AV_CODEC_ID_HEVC,
     .to_annexb = "hevc_mp4toannexb",
     .mp4_tag = tag("hvc1"),
     .type_shift = 1,
     .type_mask = 0x3f,
     .first_parameter_set = 32, /* video, sequence, then picture */
     .last_parameter_set = 34,
     .delimiter = kDelimiterH265},
};

constexpr bool rows_are_in_order()
{
    uint32_t expected = 0;
    for (const CodecTraits &row : kCodecs) {
        if (static_cast<uint32_t>(row.codec) != expected++) return false;
    }
    return true;
}
static_assert(rows_are_in_order(), "traits_of() finds a codec by its position");

} // namespace

const CodecTraits &traits_of(Codec codec)
{
    return kCodecs[static_cast<size_t>(codec)];
}

const CodecTraits *traits_of_av_id(int av_id)
{
    for (const CodecTraits &row : kCodecs) {
        if (row.av_id == av_id) return &row;
    }
    return nullptr;
}

const char *codec_name(Codec codec)
{
    return traits_of(codec).name;
}

std::string codec_names()
{
    std::string names;
    for (const CodecTraits &row : kCodecs) {
        const bool last = &row == std::end(kCodecs) - 1;
        names += (names.empty() ? "" : last ? " and " : ", ") + std::string(row.name);
    }
    return names;
}

} // namespace nvrec
