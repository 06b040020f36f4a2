/*
 * playback.h - plays recorded files side by side on one clock, through ext_playback_*.
 *
 *   freeze() -> (the panes change) -> thaw() -> running <-> paused -> at the end of all shown files
 *
 * All shown files share a position, which runs at the playback's speed and stands still while playback is
 * paused; each file's next picture is due when the position reaches its place. Whenever decoders were flushed
 * (another layout, a jump), each file goes back to a key frame and delivers all pictures from there up to the
 * position at once, so that the screen shows the picture of the position.
 *
 * When a file's codec differs from the one that its decoder was made for, playback stands still until the
 * main thread has made the decoders anew: waits_for_decoders(), then freeze(), make_decoders_fit(), a layout,
 * thaw().
 *
 * Threads: one playback thread delivers; all else is called from the main thread. One lock guards what both
 * use, and is held during a delivery. freeze() holds it until thaw(), so that nothing is delivered during a
 * layout of the library.
 */
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/clock.h"
#include "nvrhal/limits.h"
#include "play/playback_track.h"

namespace nvrec
{

class Playback
{
public:
    /** The library plays on decoder channels 0 to 7: that many files run at once. */
    static constexpr int kPlayers = NVRHAL_PLAYBACK_CHANNELS;

    explicit Playback(const std::vector<TrackPlan> &tracks);
    /** One track for each file. */
    explicit Playback(const std::vector<std::string> &files);
    ~Playback();

    /**
     * Open each track's file of a place. @return how many could be opened; the tracks have the reasons of the
     * others.
     */
    size_t open(int64_t position_us = 0);

    /**
     * Start the thread, frozen.
     * @param changed  called by any thread when the position has reached the end, or decoders do not fit
     */
    void start(std::function<void()> changed);

    /** End the thread and everything with it. */
    void stop();

    /** Stand still until thaw(). */
    void freeze();

    /** Between freeze() and thaw(): go on from another place. */
    void set_position(int64_t position_us) { anchor(position_us); }

    /** Between freeze() and thaw(): make the decoders of these tracks for what comes at the position. */
    void make_decoders_fit(const std::vector<size_t> &tracks);

    /**
     * Go on after the decoders were flushed, with these files on the screen.
     * @param tracks  their numbers; other files rest
     */
    void thaw(const std::vector<size_t> &tracks);

    void pause(bool paused);
    /** Go to a place: every shown file to a key frame at or before it. @return the position reached */
    int64_t seek(int64_t position_us);
    /** The same, but exactly to that place: a time of day, the same for all files. */
    void seek_exactly(int64_t position_us);
    /** Whether a place lies behind the end of all shown files. A seek has to follow. */
    bool ends_before(int64_t position_us);
    /** When the next picture of any shown file is due; INT64_MAX = there is none. */
    int64_t next_due_us() const;
    /** Times the recorded rate: 1 or 2, or more, which shows key frames only. */
    void set_speed(double speed);
    /** Hear that file; -1 = none. */
    void listen_to(int track);

    int64_t position_us() const;
    bool paused() const { return paused_.load(); }
    double speed() const { return speed_.load(); }
    /** Every shown file has been played to its end, and not paused there. */
    bool ended() const { return ended_.load(); }
    /** Playback waits for decoders of another codec. */
    bool waits_for_decoders() const { return waits_for_decoders_.load(); }

    const std::vector<std::unique_ptr<PlaybackTrack>> &tracks() const { return tracks_; }

    /** A file's codec, size and rate as last learned. */
    StreamFacts facts_of(size_t track) const;

    /** Fed pictures of all files so far. */
    uint64_t sent() const;

private:
    std::unique_lock<std::mutex> hold() const;
    void run();
    void position_tracks();
    PlaybackTrack *next_track(int64_t until_us);
    void catch_up();
    void wait_for_decoders() const;
    void push_out();
    int64_t dark_from_us() const;
    void darken(int64_t position_us);
    void deliver(PlaybackTrack &track, bool with_sound);
    void end();
    void ask_for_decoders();
    int64_t position_at(Clock::time_point now) const;
    void anchor(int64_t position_us);
    bool key_frames_only() const;

    std::vector<std::unique_ptr<PlaybackTrack>> tracks_;
    std::function<void()> changed_;
    std::thread thread_;

    mutable std::mutex lock_; /* guards the tracks and what follows */
    Condition wake_;
    std::unique_lock<std::mutex> frozen_; /* main thread: holds the lock between freeze and thaw */
    std::vector<size_t> shown_;           /* tracks on the screen                                 */
    int heard_ = -1;
    bool quit_ = false;
    bool orders_ = false;         /* something changed: look again         */
    int64_t anchor_us_ = 0;       /* the position ...                      */
    Clock::time_point anchor_at_; /* ... at this time                    */
    std::atomic<bool> paused_ = false;
    std::atomic<double> speed_ = 1.0;
    std::atomic<bool> ended_ = false;
    std::atomic<bool> waits_for_decoders_ = false;
};

} // namespace nvrec
