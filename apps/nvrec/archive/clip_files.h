/*
 * clip_files.h - both ends of clip.h, through libavformat: a source reads a recording as packets with times
 * of day, and an output writes such packets into a clip.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <string>

struct AVCodecParameters;
struct AVFormatContext;
struct AVPacket;

namespace nvrec
{

/** The packet at hand of a source. */
struct ClipPacket {
    AVPacket *packet = nullptr; /* the source's, until it reads the next */
    bool sound = false;
    bool key = false;
    int64_t wall_us = 0; /* when it is shown or heard: time of day */
    int64_t dts_us = 0;  /* when it is decoded, likewise           */
    int64_t duration_us = 0;
};

class ClipSource
{
public:
    ClipSource() = default;
    ~ClipSource();
    ClipSource(const ClipSource &) = delete;
    ClipSource &operator=(const ClipSource &) = delete;

    /** Open a recording whose first picture was taken then, at the key frame before a time. */
    bool open(const std::string &path, int64_t from_us, int64_t at_us);
    /** @return false at the end, or with a reason in error(). */
    bool read(ClipPacket *packet);
    const std::string &error() const { return error_; }

    const AVCodecParameters *video() const;
    const AVCodecParameters *sound() const; /* null = none */

private:
    bool fail(int av_code);

    AVFormatContext *format_ = nullptr;
    AVPacket *packet_ = nullptr;
    int video_ = -1, sound_ = -1;
    int64_t start_us_ = 0; /* of the file's own clock */
    int64_t from_us_ = 0;
    std::string error_;
};

class ClipOutput
{
public:
    ClipOutput() = default;
    ~ClipOutput();
    ClipOutput(const ClipOutput &) = delete;
    ClipOutput &operator=(const ClipOutput &) = delete;

    /** Begin a clip with a source's streams, whose time 0 is this time of day. */
    bool open(const std::string &path, const ClipSource &source, int64_t origin_us);
    /** Whether packets of that source fit into it. */
    bool can_take(const ClipSource &source) const;
    bool write(const ClipPacket &packet);
    bool close();
    const std::string &error() const { return error_; }

private:
    bool add(const AVCodecParameters *parameters, int *index);
    bool fill_with_silence(int64_t until);
    bool put(AVPacket *packet, int index);
    bool fail(int av_code);

    AVFormatContext *format_ = nullptr;
    std::string path_, error_;
    int video_ = -1, sound_ = -1;
    int64_t origin_us_ = 0;
    int64_t last_dts_[2] = {INT64_MIN, INT64_MIN}; /* by stream, in its time base */
    int64_t sound_end_ = INT64_MIN;                /* in the sound's time base    */
};

} // namespace nvrec
