/*
 * sound_packet.h - a camera's sound as the camera sends it, for recordings. The library and the loudspeaker
 * take A-law that is made of the same packets, see sound.h.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace nvrec
{

/** What a container must know of it. One object for all packets between two changes. */
struct SoundCodec {
    int av_id = 0; /* enum AVCodecID */
    int rate_hz = 0;
    int channels = 0;
    int frame_samples = 0; /* samples a packet, 0 = it varies or is not known */
    int block_bytes = 0;   /* of PCM and ADPCM: bytes that belong together    */
    int64_t bit_rate_bps = 0;
    std::vector<uint8_t> extradata; /* as libavcodec has it: AudioSpecificConfig, OpusHead ... */

    bool operator==(const SoundCodec &) const = default;
};

struct SoundPacket {
    std::vector<uint8_t> bytes;
    int64_t pts_us = 0;      /* on the clock of AccessUnit::pts_us          */
    int64_t wall_us = 0;     /* time of day, as AccessUnit::wall_us         */
    int64_t duration_us = 0; /* 0 = not known                               */
    std::shared_ptr<const SoundCodec> codec;
};

} // namespace nvrec
