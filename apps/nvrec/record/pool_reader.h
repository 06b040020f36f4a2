/*
 * pool_reader.h - one stream of one channel through the library's frame pool: put on the camera's
 * thread, taken again on the recorder's.
 *
 *   camera                          pool (overwrites its oldest)           recorder
 *   metadata, ext_set_*, event  ----->  [ frames ]  ----->  wait, ext_get_*, copy, look at metadata
 *
 * The pool carries bytes, the kind of frame and one 32-bit stamp. A file needs more: the codec, the size,
 * 64-bit presentation and decoding times. These are put on a list beside the pool together with the frame.
 * When a frame is taken, its entry is found by stamp and length; entries before it on the list belong to
 * frames that were overrun and are lost. The pool wakes no reader, so an event does.
 *
 * A frame's bytes stay in the pool only until the camera's thread comes round the ring and overwrites them.
 * The pool does not tell when that happens, but the list does: it shows what was put after the frame.
 *
 * Threads: put() on one thread, take() on one other.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "camera/feeder.h"
#include "host/clock.h"
#include "nvrhal.h"
#include "record/recorded_sound.h"

namespace nvrec
{

enum class PoolStream { kMain, kNetwork, kSound };

/** Wakes a recording's thread; several streams may set one event. */
class PoolEvent
{
public:
    void set();

    /** Say that nothing will be put any more. */
    void close();

    /** Wait until it was set since the last wait, or is closed. @return false once it is closed. */
    bool wait();

private:
    std::mutex lock_;
    Condition changed_;
    bool pending_ = false;
    bool closed_ = false;
};

/** Counts of the frames of one stream; stored = read + lost once all were taken. */
struct PoolCounters {
    uint64_t stored = 0;         /* the pool took them                                       */
    uint64_t refused = 0;        /* the pool did not: they were too large for it             */
    uint64_t read = 0;           /* taken out whole                                          */
    uint64_t lost = 0;           /* overwritten before they were taken                       */
    uint64_t resynchronised = 0; /* times that reading went on behind lost or refused frames */

    PoolCounters operator-(const PoolCounters &from) const
    {
        return {stored - from.stored, refused - from.refused, read - from.read, lost - from.lost,
                resynchronised - from.resynchronised};
    }
};

/** A frame as it came out. */
struct PoolFrame {
    std::vector<uint8_t> bytes;
    bool key = false;
    bool after_gap = false;  /* frames before it are missing                      */
    int64_t pts_us = 0;      /* presentation time, from the input's first unit on */
    int64_t dts_us = 0;      /* decoding time, likewise                           */
    int64_t taken_at_us = 0; /* time of day, microseconds since 1970              */
    StreamFacts facts;

    /* As it was put: */
    int64_t arrived_us = 0;     /* monotonic                                   */
    int64_t clock_ahead_us = 0; /* of that clock, the recorder's time of day   */

    /* Of sound that is kept as the camera sent it. */
    std::shared_ptr<const SoundFormat> sound;
    int64_t duration_us = 0;
};

class PoolReader
{
public:
    PoolReader(int channel, PoolStream stream, PoolEvent &event);

    /**
     * Put a picture or a block of sound into the pool.
     * @param wall_us  time of day of the picture; 0 = when it is put
     * @return 0 = stored, -1 = refused.
     */
    int32_t put(const AccessUnit &unit, const StreamFacts &facts, int64_t wall_us = 0);
    int32_t put(const SoundBlock &block);

    /** Take the next frame out. @return false when there is none now. */
    bool take(PoolFrame *frame);

    /** Wait until the reader has nearly caught up; for producers that may wait. */
    void wait_for_reader();

    /** Say that nothing will be taken any more: the frames that still wait are lost. */
    void give_up();

    PoolCounters counters() const;

private:
    struct FrameMetadata {
        uint32_t length_bytes = 0;
        uint32_t stamp = 0;         /* low 32 bits of pts_us */
        bool after_refused = false; /* the pool refused the frame before it */
        int64_t pts_us = 0, dts_us = 0;
        int64_t wall_us = 0; /* 0 = when it was put */
        StreamFacts facts;
        int64_t arrived_us = 0, clock_ahead_us = 0; /* as PoolFrame has them */
    };
    struct Fetched {
        const uint8_t *bytes;
        uint32_t length_bytes, stamp;
        bool key;
        int64_t taken_at_us;
    };

    int32_t store(const FrameMetadata &metadata, FrameInfo *frame);
    bool fetch(Fetched *fetched);
    bool fetch_sound(Fetched *fetched);
    bool find_metadata(const Fetched &fetched, FrameMetadata *metadata);
    FrameMetadata pop_metadata();
    void lose_oldest();

    const uint32_t channel_;
    const PoolStream stream_;
    PoolEvent &event_;

    mutable std::mutex lock_; /* guards what follows */
    Condition reader_came_;
    std::deque<FrameMetadata> metadata_; /* frames put or just being put and not yet taken, oldest first */
    uint64_t waiting_bytes_ = 0;         /* of them                                                      */
    bool refused_last_ = false;
    bool gap_ = false; /* the next frame taken comes after missing ones                */
    bool gave_up_ = false;
    PoolCounters counters_;

    /* The taking thread's own. */
    StreamReader sound_position_ =
        {}; /* ext_get_audio_stream hands out no stamp, so sound is read below it */
    bool sound_positioned_ = false;
};

} // namespace nvrec
