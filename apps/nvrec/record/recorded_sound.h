/*
 * recorded_sound.h - sound as a file keeps it: as the camera sent it if the container has a place for it
 * (AAC, Opus, G.711), else the library's 8 kHz A-law.
 *
 * Threads: plain values.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace nvrec
{

struct SoundFormat {
    int av_id = 0; /* enum AVCodecID */
    int rate_hz = 0;
    int channels = 0;
    std::vector<uint8_t> extradata;
    bool operator==(const SoundFormat &) const = default;
};

/** What the frame pools carry. */
std::shared_ptr<const SoundFormat> pool_sound_format();

/** Whether files can keep this sound as it is, and all facts that a file needs are known. */
bool is_recordable(const SoundFormat &format);

/** The format as a file needs it: the header of Opus, which network cameras do not send, is added. */
SoundFormat completed(SoundFormat format);

} // namespace nvrec
