/*
 * recording.h - one stream of one channel on its way from the frame pool into files.
 *
 *   event -> take frames -> first key frame: a file -> frames -> key frame in another slot of time,
 *   or of another codec, size or parameter sets: the next file -> ... -> drained and closed
 *
 * After frames were lost, pictures are passed over up to the next key frame. A file that cannot be
 * written is given up; at a key frame some seconds later the next one is tried.
 *
 * Threads: the camera's thread puts into video() and sound(); a thread of the recording takes out
 * and writes; start() and finish() from one other.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <thread>

#include "record/container_file.h"
#include "record/parameter_sets.h"
#include "record/pool_reader.h"
#include "record/segment.h"
#include "record/summary.h"

namespace nvrec
{

struct RecordOptions {
    std::string directory;
    Container container = Container::kMp4;
    int segment_s = kHour_s; /* length of a file */
};

class Recording
{
public:
    using ErrorHandler = std::function<void(const std::string &line)>;

    /**
     * @param stream    kMain or kNetwork; sound belongs to the main stream
     * @param on_error  called from the recording's thread
     */
    Recording(int channel, PoolStream stream, const RecordOptions &options, ErrorHandler on_error);
    ~Recording();

    /** Begin to read. Before anything is put. */
    void start();

    /** Nothing will be put any more: write what the pool still holds, end the file, end the thread. */
    void finish();

    PoolReader &video() { return video_; }
    PoolReader &sound() { return sound_; }

    /** After finish(): one row for the pictures, and one for the sound if there was any. */
    std::vector<RecordingReport> reports() const;
    bool failed() const { return !report_.trouble.empty(); }

private:
    void run();
    void write_picture(const PoolFrame &frame);
    bool needs_file(const PoolFrame &frame, const TrackFacts &facts) const;
    void begin_file(const PoolFrame &frame, const TrackFacts &facts);
    void end_file();
    void fail(const std::string &reason);
    void write_sound(int64_t until_us);
    void write_block(const PoolFrame &block);

    const int channel_;
    const bool carries_sound_;
    const RecordOptions options_;
    const ErrorHandler on_error_;
    PoolEvent event_;
    PoolReader video_;
    PoolReader sound_;
    std::thread thread_;

    /* The recording's thread only; read by others after finish(). */
    ContainerFile file_;
    int64_t slot_ = 0; /* of the open file */
    std::vector<uint8_t> parameter_sets_;
    bool waits_for_key_ = true;
    int64_t last_taken_at_us_ = 0;      /* wall clock                  */
    int64_t try_again_at_us_ = 0;       /* wall clock, after a failure */
    std::deque<PoolFrame> early_sound_; /* of the file that comes next */
    RecordingReport report_;
    uint64_t sound_written_ = 0, sound_skipped_ = 0;
};

} // namespace nvrec
