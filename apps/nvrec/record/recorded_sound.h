/*
 * recorded_sound.h - sound as a file keeps it: what the camera sent where the container has a place
 * for it (AAC, Opus, G.711), and the library's 8 kHz A-law otherwise.
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

/** Whether files have a place for it as it is, and what a file needs to know is there. */
bool is_recordable(const SoundFormat &format);

/** A format as files want it: Opus of a network camera comes without its head. */
SoundFormat completed(SoundFormat format);

} // namespace nvrec
