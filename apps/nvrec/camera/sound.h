/*
 * sound.h - a camera's sound as the library takes it: 8 kHz mono G.711 A-law in blocks of 40 ms.
 *
 *   packets of any codec -> libavcodec -> libswresample -> 16-bit samples, 8 kHz mono
 *     -> blocks of 320 samples, one A-law byte each
 *
 * Threads: the thread that reads the input.
 */
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "nvrhal/limits.h"

struct AVFormatContext;
struct AVPacket;

namespace nvrec
{

constexpr int kSoundRate_hz = NVRHAL_SOUND_RATE_HZ;
constexpr size_t kSoundBlock_bytes = NVRHAL_SOUND_UNIT_BYTES;
constexpr int64_t kSoundBlock_us = 40'000;

/** 40 ms of sound. */
struct SoundBlock {
    int64_t pts_us = 0; /* of the first sample */
    std::array<uint8_t, kSoundBlock_bytes> samples{};
};

/** The sound of one open input, next to its pictures. */
class SoundTrack
{
public:
    /**
     * Find the sound that belongs to a stream of pictures.
     * @return null when there is none that can be decoded.
     */
    static std::unique_ptr<SoundTrack> find(AVFormatContext *format, int video_stream);
    ~SoundTrack();
    SoundTrack(const SoundTrack &) = delete;
    SoundTrack &operator=(const SoundTrack &) = delete;

    /** The stream whose packets go to decode(). */
    int stream_index() const { return stream_index_; }

    /** Decode a packet and keep its samples. A damaged packet is a gap. */
    void decode(const AVPacket &packet);

    /** The input goes on at another place: drop the samples that are not a whole block yet. */
    void forget();

    /** The end of what was decoded since open or forget(), on the stream's own clock; INT64_MIN = nothing
     * was. */
    int64_t read_until_us() const;

    /** Hand out the whole blocks so far, with times on the stream's own clock. */
    std::vector<SoundBlock> take();

private:
    struct Decoder;
    SoundTrack(std::unique_ptr<Decoder> decoder, int stream_index);
    void convert();
    void place(int64_t pts_us);
    void cut_blocks();

    std::unique_ptr<Decoder> decoder_;
    const int stream_index_;
    std::vector<int16_t> samples_; /* not yet a block                                */
    int64_t samples_at_us_ = 0;    /* time of the first of them                      */
    bool placed_ = false;          /* samples_at_us_ is known                        */
    std::vector<SoundBlock> blocks_;
};

/** One sample as G.711 A-law. */
uint8_t alaw_of(int16_t sample);

} // namespace nvrec
