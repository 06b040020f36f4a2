/*
 * Descriptions of the video and audio that the recorder writes, in the shape of a Windows bitmap
 * and wave header, little-endian; and the alarm inputs, of which there are none. Thread: any.
 */
#include "core/abi.h"
#include "core/device_state.h"
#include "core/log.h"
#include "nvrhal.h"

#include <cstring>

using namespace nvrhal;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the records are copied as they lie in memory");

namespace
{

constexpr char kSource[] = "misc.c";

struct VideoFormat {
    uint32_t size;         /*  0  bytes of this record */
    uint32_t width;        /*  4  pixels               */
    uint32_t height;       /*  8                       */
    uint16_t planes;       /* 12                       */
    uint16_t bit_count;    /* 14  bits a pixel         */
    char compression[4];   /* 16  codec                */
    uint32_t image_size;   /* 20  not told, as all below */
    uint32_t resolution_x; /* 24                       */
    uint32_t resolution_y; /* 28                       */
    uint32_t colors;       /* 32                       */
    uint32_t main_colors;  /* 36                       */
};
ABI_SIZE(VideoFormat, 40);
ABI_AT(VideoFormat, compression, 16);

struct AudioFormat {
    uint16_t format_tag;         /*  0  6 = A-law              */
    uint16_t channels;           /*  2                         */
    uint32_t samples_per_second; /*  4                         */
    uint32_t bytes_per_second;   /*  8  of the decoded samples */
    uint16_t block_bytes;        /* 12                         */
    uint16_t bits_per_sample;    /* 14  decoded                */
    uint16_t extra_bytes;        /* 16                         */
};
constexpr size_t kAudioFormatBytes = 18; // without the padding behind the last field
ABI_AT(AudioFormat, extra_bytes, 16);

constexpr AudioFormat kAudioFormat = {6, 1, 8000, 16000, 2, 16, 0};

template <size_t rows> const StreamAttr *row_of(const StreamAttr (&streams)[rows], uint32_t channel)
{
    return channel < rows ? &streams[channel] : nullptr;
}

/** Channels below N are the cameras' main streams, those above their network streams. */
const StreamAttr *stream_of(uint32_t channel)
{
    const uint32_t count = static_cast<uint32_t>(camera_count());
    return channel < count ? row_of(major_stream, channel) : row_of(minor_stream, channel - count);
}

} // namespace

int32_t ext_get_video_format(uint32_t channel, uint8_t out[40])
{
    if (out == nullptr) return -1;
    const StreamAttr *stream = stream_of(channel);
    VideoFormat format = {};
    format.size = sizeof format;
    format.width = stream == nullptr ? 0 : load_word(stream->width);
    format.height = stream == nullptr ? 0 : load_word(stream->height);
    format.planes = 1;
    format.bit_count = 16;
    std::memcpy(format.compression, "H265", sizeof format.compression);
    std::memcpy(out, &format, sizeof format);
    return 0;
}

int32_t ext_get_audio_format(uint8_t out[18])
{
    log_entry(kSource);
    if (out == nullptr) return -1;
    std::memcpy(out, &kAudioFormat, kAudioFormatBytes);
    return 0;
}

int32_t ext_alarm_status_get(nvrhal_u64 *status)
{
    log_entry(kSource);
    if (status == nullptr) return -1;
    *status = 0;
    return 0;
}
