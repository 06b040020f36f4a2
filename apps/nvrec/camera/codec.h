/*
 * codec.h - what the recorder must know of each codec, in one table. Another codec is another row.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "nvrhal/frame.h"

namespace nvrec
{

/** Codec codes as ext_send_stream takes them. */
enum class Codec : uint32_t { kH264 = NVRHAL_CODEC_H264, kH265 = NVRHAL_CODEC_H265 };

struct CodecTraits {
    Codec codec;
    const char *name;
    int av_id;             /* enum AVCodecID                                                           */
    const char *to_annexb; /* filter for length-prefixed units, as MP4 and MKV carry them              */
    uint32_t mp4_tag;      /* says that the parameter sets are in the file's header, not in the stream */

    /* A unit's type stands in the first byte behind its start code. */
    int type_shift;
    uint8_t type_mask;
    uint8_t first_parameter_set, last_parameter_set; /* types */

    /* An access unit delimiter with its start code: the beginning of the next picture. */
    std::span<const uint8_t> delimiter;
};

const CodecTraits &traits_of(Codec codec);

/** The codec with this number in libavcodec; null = the board does not decode it. */
const CodecTraits *traits_of_av_id(int av_id);

const char *codec_name(Codec codec);

/** "H.264 and H.265": all of them, for a complaint. */
std::string codec_names();

} // namespace nvrec
