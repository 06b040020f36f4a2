/*
 * container_file.h - one file of a recording, muxed through libavformat without re-encoding. It touches no
 * disk: the bytes of the file come out as chunks (take_output). After each chunk that is written whole, the
 * file on the disk plays to its end.
 *
 * MP4: fragments, each complete in itself. A fragment ends at a key frame, and after a second in
 * streams whose key frames stand further apart. A picture lasts until the next one, so each picture is held
 * back until the next one is there. MP4 proper has no place for G.711; a file with such sound is of the
 * QuickTime kind of the same format, which has one.
 * MKV: clusters of at most a second, each complete in itself. The head leaves some fields open, which are
 * filled in at the end.
 *
 * The head has the camera's name as its title and the time of day at which the file begins, to the
 * microsecond, so that an index can be made from the files alone.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "camera/input.h"
#include "record/recorded_sound.h"

struct AVFormatContext;
struct AVStream;

namespace nvrec
{

enum class Container { kMp4, kMkv };

const char *file_ending(Container container);

/** What a file needs to know before its first frame. */
struct TrackFacts {
    StreamFacts stream;
    std::vector<uint8_t> parameter_sets;      /* Annex B                                             */
    std::shared_ptr<const SoundFormat> sound; /* null = none                                         */
    bool operator==(const TrackFacts &other) const;
};

/** What the head of a file tells. */
struct FileLabel {
    std::string camera;  /* its name; empty = it has none                                  */
    int64_t from_us = 0; /* time of day of the origin, us since 1970; 0 = the file says none */
};

/** A part of a file: bytes at their places, in the order in which they are to be written. */
struct FileChunk {
    struct Extent {
        int64_t at;
        std::vector<uint8_t> bytes;
    };
    std::vector<Extent> extents;
    uint64_t pictures = 0; /* that become readable by it */
    uint64_t sounds = 0;
    int64_t until_us = 0; /* decoding time behind the last of the pictures, on the camera's clock */

    bool empty() const { return extents.empty(); }
    uint64_t bytes() const;
};

class ContainerFile
{
public:
    ContainerFile();
    ~ContainerFile();
    ContainerFile(const ContainerFile &) = delete;
    ContainerFile &operator=(const ContainerFile &) = delete;

    /** Begin a file; its time begins at `origin_us`. @return false with the reason in error(). */
    bool open(Container container, const TrackFacts &facts, int64_t origin_us, const FileLabel &label = {});

    /** Append a picture in Annex B form. @return false with the reason in error(). */
    bool write_video(std::span<const uint8_t> unit, int64_t pts_us, int64_t dts_us, bool key);

    /** Append sound in the file's format, of the file's origin or later, to a file with sound. */
    bool write_sound(std::span<const uint8_t> bytes, int64_t pts_us, int64_t duration_us);

    /** The bytes that can be written to the disk by now; empty = no fragment or cluster is whole yet. */
    FileChunk take_output();

    /** End the file; take_output() has its end then. @return false with the reason in error(). */
    bool close();

    /** Give up a file that cannot be written any more. */
    void discard();

    bool is_open() const { return format_ != nullptr; }
    const TrackFacts &facts() const { return facts_; }
    int64_t origin_us() const { return origin_us_; }
    const std::string &error() const { return error_; }

private:
    class Output; /* where libavformat writes: memory */
    struct HeldPicture {
        std::vector<uint8_t> bytes;
        int64_t pts, dts; /* in the track's time base */
        int64_t dts_us;
        bool key;
    };

    void set_label(const FileLabel &label);
    bool add_video();
    bool add_sound();
    bool write_held(int64_t duration);
    bool write(AVStream *stream, std::span<const uint8_t> bytes, int64_t pts, int64_t dts, int64_t duration,
               bool key);
    void note_output(bool sound_cached);
    bool fail(int av_code);

    AVFormatContext *format_ = nullptr;
    std::unique_ptr<Output> output_;
    AVStream *video_ = nullptr;
    AVStream *sound_ = nullptr;
    Container container_ = Container::kMp4;
    TrackFacts facts_;
    std::string error_;
    int64_t origin_us_ = 0;
    std::optional<HeldPicture> held_;
    int64_t last_duration_ = 0;          /* of a picture, in the track's time base; 0 = none yet */
    int64_t muxer_shift_ = 0;            /* what the muxer adds to the pictures' times */
    int64_t last_video_dts_ = INT64_MIN; /* likewise                               */
    int64_t last_sound_end_ = INT64_MIN;
    uint64_t muxed_pictures_ = 0, muxed_sounds_ = 0; /* given to libavformat, and not in a chunk yet */
    int64_t muxed_until_us_ = 0;
    bool last_was_sound_ = false;
    FileChunk ready_;
};

} // namespace nvrec
