/*
 * recording.h - one stream of one channel on its way from the camera into files.
 *
 *   event -> take frames -> wanted? -> first key frame: a file -> frames -> chunks to the disk writer
 *     -> key frame in another slot of time, or of another codec, size, parameter sets or sound, or
 *        behind a jump of the clock: the next file -> ... -> drained and closed
 *
 * Frames may be unwanted by the plan or by the record key. A plan with events holds the last seconds in
 * memory (held_frames.h); at an event they go into the file first. Its file ends at a key frame, because
 * pictures can be held for the next event only from a key frame on.
 *
 * After frames were lost, pictures are skipped up to the next key frame. A file that cannot be written is
 * given up, and the next one is tried at the first key frame after ten seconds. While the disk writer's queue
 * is full, frames stay in their pool or queue, and are overwritten there.
 *
 * Threads: the camera's thread puts; a thread of the recording takes out, muxes and queues; start()
 * and finish() from one other; the rest from any.
 */
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "camera/camera_source.h"
#include "record/container_file.h"
#include "record/disk_writer.h"
#include "record/event_span.h"
#include "record/frame_route.h"
#include "record/held_frames.h"
#include "record/outages.h"
#include "record/parameter_sets.h"
#include "record/plan.h"
#include "record/segment.h"
#include "record/summary.h"
#include "wall/recording_status.h"

namespace nvrec
{

struct RecordOptions {
    std::string directory;
    Container container = Container::kMp4;
    int segment_s = kHour_s; /* length of a file */
    RecordingPlan plan;
    std::string camera; /* its name, which stands in the files; may be empty */
};

/** What the record key says. */
enum class RecordOrder { kAsPlanned, kStart, kStop };

class Recording
{
public:
    using ErrorHandler = std::function<void(const std::string &line)>;
    /** Told of a span of time inside a file or between two files of which nothing is kept, though recording
     * was wanted. Called on the recording's thread, and from settle(). */
    using GapHandler = std::function<void(int64_t from_us, int64_t to_us, const std::string &why)>;

    /**
     * @param stream    kMain or kNetwork; sound belongs to the main stream
     * @param on_error  gets lines that begin with the camera; called from the recording's thread, and from
     *                  finish()
     */
    Recording(int channel, PoolStream stream, const RecordOptions &options, DiskWriter &writer,
              ErrorHandler on_error, GapHandler on_gap = {});
    ~Recording();

    /** Begin to read. Call it before anything is put. */
    void start();

    /** Nothing will be put any more: queue the frames that are still there, end the file, end the thread. */
    void finish();

    /** After finish() here and of the disk writer: see whether the last files were written. */
    void settle();

    /** For the camera's thread. */
    FrameRoute &video() { return video_; }
    void put(const SoundBlock &block);
    void put(const SoundPacket &packet);
    void wait_for_sound_reader();

    /** An event: a plan with events records from its seconds before the event on. */
    void begin_event();
    void set_order(RecordOrder order);
    /**
     * From now on another camera, with this name, is on the channel: its next key frame begins a file, and
     * the counters begin anew.
     */
    void begin_anew(const std::string &camera);
    void set_plan(const RecordingPlan &plan);
    /** The camera, or the connection to it, ends with the frame that was put last: its file ends. */
    void end_camera();

    RecordingStatus status() const;
    uint64_t bytes_in_all() const; /* also those of cameras before */
    bool runs() const { return state() == RecordingState::kRuns; }
    Clock::time_point heartbeat_deadline() const;

    /** After finish() here and of the disk writer: a row for the pictures, and one for sound if any came. */
    std::vector<RecordingReport> reports() const;
    bool failed() const;

private:
    void run();
    void take_frames();
    void forget_camera();
    void count_anew();
    PoolCounters sound_counters() const;
    void wait_for_room();
    bool is_wanted(int64_t wall_us) const;
    bool wants_held() const;
    bool goes_by_events() const;
    bool is_silent() const;
    RecordingState state() const;
    bool waits_for_sound(const PoolFrame &frame);
    int64_t held_before_us() const;
    RecordingPlan plan() const;
    std::string camera() const;
    std::string label() const { return channel_label(channel_, camera()); }
    void handle(PoolFrame frame);
    void let_held_go();
    void catch_up();
    void write_picture(const PoolFrame &frame);
    bool needs_file(const PoolFrame &frame, const TrackFacts &facts) const;
    std::shared_ptr<const SoundFormat> sound_of(const StreamFacts &facts) const;
    void begin_file(const PoolFrame &frame, const TrackFacts &facts);
    std::string intended_path(const OutputFile &output) const;
    void end_file();
    void pass_output();
    void look_for_trouble();
    void note_trouble(const std::string &path, const std::string &reason);
    void fail(const OutputFile::Trouble &trouble);
    void fail_container();
    void tell_gap(const Outages::Gap &gap, bool inside);
    void take_sound();
    void write_sound(int64_t until_us);
    bool write_block(const PoolFrame &block);
    void see_whether_well();
    void note_state();

    const int channel_;
    const bool carries_sound_;
    const RecordOptions options_;
    DiskWriter &writer_;
    const ErrorHandler on_error_;
    const GapHandler on_gap_;
    const std::string stream_;
    const std::shared_ptr<PoolEvent> event_ =
        std::make_shared<PoolEvent>(); /* the disk writer sets it, too */
    FrameRoute video_;
    std::optional<PoolReader> sound_pool_;       /* A-law */
    PacketQueue sound_queue_;                    /* as sent; and A-law of channels that the pools have not */
    std::shared_ptr<const SoundCodec> codec_;    /* of the last packet; the camera's thread only */
    std::shared_ptr<const SoundFormat> as_sent_; /* the same as files have it; null = they do not */
    std::thread thread_;
    std::atomic<bool> closing_ = false;
    std::atomic<bool> camera_ended_ = false;
    std::atomic<bool> camera_replaced_ = false;
    std::atomic<bool> anew_ = false;             /* the next key frame begins a file */
    std::atomic<bool> sends_recordable_ = false; /* the camera's sound, as it is */
    std::atomic<RecordOrder> order_ = RecordOrder::kAsPlanned;
    std::atomic<RecordingState> state_ = RecordingState::kWaiting;
    EventSpan event_span_;
    std::atomic<Clock::rep> heartbeat_deadline_ = INT64_MAX;
    std::atomic<Clock::rep> written_at_ = 0; /* ticks of the clock: the last picture */
    std::atomic<uint64_t> passed_over_ = 0;  /* pictures without a file */

    /* The recording's thread only; read by others after finish(). */
    ContainerFile file_;
    std::shared_ptr<OutputFile> output_; /* of the open file */
    Segment segment_;                    /* likewise         */
    struct Ended {
        std::shared_ptr<OutputFile> output;
        int64_t until_us = 0; /* time of day of its last picture */
    };
    std::vector<Ended> ended_; /* and not closed yet, as far as is known */
    std::vector<uint8_t> parameter_sets_;
    bool waits_for_key_ = true, sound_is_known_ = false, waiting_for_sound_ = false;
    bool failing_ = false; /* nothing was written since the last trouble */
    Outages outages_;
    int64_t last_place_us_ = 0;   /* of the last picture in the open file, by its own times */
    int64_t clock_offset_us_ = 0; /* time of day less monotonic time, as it began  */
    Clock::time_point try_again_at_ = Clock::time_point::min();
    Clock::time_point trouble_at_; /* when the last one was */
    uint64_t written_at_trouble_ = 0;
    HeldFrames held_{kMostHeld_bytes};
    std::shared_ptr<const SoundFormat> sent_sound_; /* null = A-law, or none */
    std::deque<PoolFrame> early_sound_;             /* of pictures that come */
    uint64_t sent_taken_ = 0, alaw_taken_ = 0;      /* sound                 */

    mutable std::mutex lock_; /* guards what follows */
    RecordingPlan plan_;
    std::string camera_;  /* its name, which stands in the files; may be empty */
    std::string trouble_; /* the last one: path and reason */
    bool failed_ = false; /* of this camera or one before  */
    std::shared_ptr<OutputTally> tally_ =
        std::make_shared<OutputTally>();                       /* the recording's thread sets it */
    std::vector<std::shared_ptr<OutputTally>> tallies_before_; /* of cameras before               */
    PoolCounters video_before_, sound_before_;                 /* counted when the camera came    */
    std::string said_reason_;
    uint64_t recoveries_said_ = 0;             /* the disk writer's, as it was said */
    std::shared_ptr<OutputFile> shown_output_; /* for status() */
};

} // namespace nvrec
