/*
 * recording_status.h - the state of recording now, for the screen, a status page and the lamp: plain values,
 * and the interface that gives them.
 *
 * Threads: values; RecordingView may be asked on any thread.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvrec
{

enum class RecordingState {
    kOff,     /* neither plan, key nor event wants it now                          */
    kWaiting, /* wanted, but no picture comes, or none with which a file can begin */
    kRuns,    /* frames go into a file                                             */
    kFailing  /* wanted, and the disk takes nothing: last_error says why           */
};

/** One stream of one camera. Numbers count from the start of the recorder. */
struct RecordingStatus {
    int channel = 0;
    std::string stream; /* "main", "network" */
    RecordingState state = RecordingState::kOff;
    bool by_event = false;        /* an event is why it runs now                                  */
    bool beside_the_pool = false; /* the frames go by the packet queue, not by the pool           */
    std::string file;             /* that is written now; empty = none                             */
    double lag_s = 0;             /* age of the oldest bytes that wait for the disk                */
    uint64_t written = 0;         /* frames that are in a file                                     */
    uint64_t lost = 0;            /* overwritten before they were read                             */
    uint64_t refused = 0;         /* too large for pool and packet queue                           */
    uint64_t skipped = 0;         /* read, and before a key frame or without a file */
    uint64_t pool_laps = 0;       /* times that reading went on behind lost frames                 */
    uint64_t bytes = 0;           /* in files                                                      */
    std::string last_error;       /* empty = none yet                                              */
};

enum class DiskState {
    kGood,
    kHangs,  /* a call to it has not come back for two seconds */
    kFull,   /* and nothing could be recycled                  */
    kFailing /* it refuses for another reason                  */
};

/** The disk below the recordings' directory. */
struct DiskStatus {
    DiskState state = DiskState::kGood;
    double since_s = 0;        /* how long, over all tries meanwhile          */
    uint64_t queued_bytes = 0; /* that wait for it                             */
    uint64_t queue_limit_bytes = 0;
    std::string trouble; /* what to show to the user; empty = none        */

    /* Where an index is kept. */
    int64_t recorded_bytes = -1; /* of all recordings in the directory; -1 = not known */
    int64_t oldest_us = 0;       /* time of day of the oldest; 0 = there is none       */
    int64_t free_bytes = -1;     /* of the disk; -1 = not known                        */
    double left_h = -1;          /* until it is full at the rate so far; -1 = not known */
    uint64_t recycled_files = 0; /* that retention deleted                             */
    std::string retention_trouble;
};

/** The recorder as other parts see it. */
class RecordingView
{
public:
    virtual ~RecordingView() = default;

    /** One for each stream, in order of channels, "main" first. */
    virtual std::vector<RecordingStatus> recordings() const = 0;
    virtual DiskStatus disk() const = 0;

    /** Whether frames of that channel's main stream go into a file now. Cheap. */
    virtual bool runs(int channel) const = 0;
};

} // namespace nvrec
