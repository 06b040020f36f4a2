/*
 * container_file.h - one file of a recording, written through libavformat without re-encoding.
 *
 * MP4: fragments, each complete in itself and written out at once, so that a recorder that dies
 * leaves a file which plays up to its last whole fragment. A fragment ends at a key frame, and after
 * two seconds in streams whose key frames stand further apart. A-law has no place in MP4 proper; a
 * file with sound is of the QuickTime kind of the same format, which has.
 * MKV: clusters of at most a second, likewise.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "camera/input.h"

struct AVFormatContext;
struct AVStream;

namespace nvrec
{

enum class Container { kMp4, kMkv };

const char *file_ending(Container container);

/** What a file needs to know before its first frame. */
struct TrackFacts {
    StreamFacts stream;
    std::vector<uint8_t> parameter_sets; /* Annex B */
    bool operator==(const TrackFacts &other) const;
};

class ContainerFile
{
public:
    ContainerFile() = default;
    ~ContainerFile();
    ContainerFile(const ContainerFile &) = delete;
    ContainerFile &operator=(const ContainerFile &) = delete;

    /** Begin a file; its time begins at `origin_us`. @return false with the reason in error(). */
    bool open(const std::string &path, Container container, const TrackFacts &facts, int64_t origin_us);

    /** Append a picture in Annex B form. @return false with the reason in error(). */
    bool write_video(std::span<const uint8_t> unit, int64_t pts_us, int64_t dts_us, bool key);

    /** Append a block of A-law, of the file's origin or later, to a file with sound. */
    bool write_sound(std::span<const uint8_t> samples, int64_t pts_us);

    /** Write what is held back and end the file. @return false with the reason in error(). */
    bool close();

    bool is_open() const { return format_ != nullptr; }
    const TrackFacts &facts() const { return facts_; }
    int64_t origin_us() const { return origin_us_; }
    const std::string &path() const { return path_; }
    const std::string &error() const { return error_; }
    uint64_t bytes() const { return bytes_; } /* written so far; whole after close() */

private:
    bool add_video();
    bool add_sound();
    bool write(AVStream *stream, std::span<const uint8_t> bytes, int64_t pts, int64_t dts, int64_t duration,
               bool key);
    bool fail(int av_code);
    void discard();

    AVFormatContext *format_ = nullptr;
    AVStream *video_ = nullptr;
    AVStream *sound_ = nullptr;
    TrackFacts facts_;
    std::string path_, error_;
    int64_t origin_us_ = 0;
    int64_t last_video_dts_ = INT64_MIN; /* in the track's time base */
    int64_t last_sound_end_ = INT64_MIN;
    uint64_t bytes_ = 0;
};

} // namespace nvrec
