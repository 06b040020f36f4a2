/*
 * feeder.h - one camera's thread: reads access units and hands them to the library in time.
 *
 *      open()            start()                    stop() or the end of the input
 *  new ------> opened ----------> feeding <-----> waiting to reconnect ------> ended
 *
 * open() reads the first key frame. The caller sends it once, so that the library makes a decoder of its
 * codec for the channel. The layout that follows throws that frame away, so the thread sends it again first.
 *
 * A camera with a second address has a smaller stream for small panes. That sub stream has a feeder of its
 * own inside this one, and goes to the decoder from its first key frame on; likewise the main stream when it
 * is wanted again. While nothing needs the main stream, it is not read.
 *
 * Threads: open(), start() and stop() from one thread, the counters from any.
 */
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "camera/camera_meter.h"
#include "camera/camera_source.h"
#include "camera/camera_status.h"
#include "camera/decoder_watch.h"
#include "camera/input.h"
#include "host/clock.h"

namespace nvrec
{

/** How inputs are fed. */
struct FeedOptions {
    bool loop = false;           /* begin a file again at its end                          */
    double speed = 1.0;          /* files: times the stream's own frame rate               */
    bool as_fast_as_can = false; /* files: the next unit when the decoder took the last one */
    uint64_t frames = 0;         /* end after so many; 0 = no limit                        */
    int32_t link_quality = 0;    /* for ext_send_stream; 0 = not measured                  */
    int32_t rate_class = 0;      /* likewise                                               */
    bool link_measured = false;  /* instead of link_quality, what status() measured        */
    uint32_t sound_channels = 0; /* bit n = channel n's sound is wanted                    */
    uint32_t main_channels = 0;  /* bit n = channel n's main stream is read whatever is shown */
    std::chrono::milliseconds open_limit = std::chrono::seconds(10);
    std::chrono::milliseconds key_limit =
        std::chrono::seconds(30); /* of a network camera's first key frame */
};

/** What a feeder has done so far. */
struct FeedCounters {
    uint64_t sent = 0;       /* units that the library accepted     */
    uint64_t refused = 0;    /* units that it refused               */
    uint64_t bytes = 0;      /* of accepted units                   */
    uint64_t passes = 0;     /* times a file was begun again        */
    uint64_t reconnects = 0; /* times a connection was opened again */
};

class Feeder
{
public:
    /** What the thread tells others; called from the feeder's thread. */
    struct Events {
        std::function<void(int channel, const std::string &line)> trouble; /* something went wrong  */
        std::function<void(int channel)> decoder_changed; /* the layout must be applied again       */
        std::function<void(int channel)> ended;           /* nothing more will be sent                */
        std::function<void(int channel, const AccessUnit &, const StreamFacts &)>
            unit; /* before it is sent */
        std::function<void(int channel, const SoundBlock &)>
            sound; /* wanted sound, before the unit that is due with it or after it */
        std::function<void(int channel, const SoundPacket &)> sound_packet; /* the same sound as it came */
        std::function<int32_t(const AccessUnit &, const StreamFacts &)>
            sink; /* where units go; 0 = accepted. None = the channel's decoder */
        std::function<void()> connection_began; /* again: nothing goes to the sink before a key frame */
    };

    Feeder(int channel, const CameraSource &source, const FeedOptions &options);
    ~Feeder();

    /** Open the input and read its first key frame. @return false with the reason in trouble(). */
    bool open();

    /** Send that frame once, so that its decoder is made. @return the library's result. */
    int32_t send_first();

    /**
     * Start the thread. It opens the input if open() was not called, and tries again if open() could not open
     * a live one.
     */
    void start(Events events);

    /**
     * Choose the stream that the decoder is fed from; without a second address it is always the main one. The
     * present stream goes on until a key frame of the other one comes. Main thread.
     */
    void want_stream(StreamChoice choice);

    /** Ask the thread to end; join waits for it. */
    void ask_to_stop();
    void join();

    /** After join(): end the session with the camera, so that the next feeder can get one. */
    void hang_up();

    /** Before start(): continue the times of the feeder that fed this channel before. Network cameras. */
    void go_on_from(const Feeder &before);

    int channel() const { return channel_; }
    const Input &input() const { return input_; }
    bool opened() const { return opened_.load(); }
    bool was_asked_to_stop() const { return stopping(); }
    bool broken() const { return broken_.load(); }

    /**
     * When the thread gives its next sign of life at the latest; it sets this before everything that may take
     * long. A deadline that has passed means that the thread hangs. max() = the thread does not run, or has
     * ended.
     */
    Clock::time_point heartbeat_deadline() const;

    /** Where it comes from, as it may be shown. */
    std::string shown_address() const { return nvrec::shown_address(source_.address); }
    const CameraSource &source() const { return source_; }

    /** False = nothing comes here: it is room for a camera. */
    bool has_camera() const { return !source_.address.empty(); }

    /** "channel 0", or "channel 0 (yard)": how messages begin. */
    std::string label() const;

    /**
     * Its state now; after it was asked to stop, its state at that time. Any thread.
     * @param at  may be null: receives the time that it is of
     */
    CameraStatus status(Clock::time_point *at = nullptr) const;

    /** A layout was applied. Main thread. */
    void layout_done();

    /** A layout has flushed its decoder: nothing is shown before a key frame. Any thread. */
    void expect_key() { waits_for_key_.store(true, std::memory_order_relaxed); }

    /** Codec, size and frame rate of the stream that is shown, as last learned. */
    StreamFacts facts() const;
    FeedCounters counters() const;
    std::string trouble() const;

private:
    void run();
    void feed();
    bool read_first();
    bool next(AccessUnit *unit);
    bool reconnect(const std::string &why);
    bool wait_until(Clock::time_point when);
    void wait_due(const AccessUnit &unit);
    void pace(const AccessUnit &unit);
    int32_t send(const AccessUnit &unit, bool *shown);
    int32_t send_main(const AccessUnit &unit, bool *shown);
    int32_t take_from_sub(Feeder &second, const AccessUnit &unit, const StreamFacts &facts);
    int32_t send_to_decoder(const AccessUnit &unit, const StreamFacts &facts);
    void send_again_if_laid_out(const AccessUnit &unit, const StreamFacts &facts, StreamChoice stream,
                                Feeder &sender);
    void start_sub();
    std::shared_ptr<Feeder> sub() const;
    bool sub_is_well() const;
    bool shows_nothing_yet() const;
    bool is_idle() const;
    bool wait_while_idle();
    void pass_sound(const AccessUnit &unit, int64_t until_us);
    void pass_last_sound(const AccessUnit &last);
    void note_jump(int64_t jumped_us);
    void note_facts();
    void watch_decoder();
    void tell_undecodable();
    std::optional<Clock::time_point> undecodable_since(Clock::time_point now) const;
    void count(const AccessUnit &unit, bool accepted);
    void note_handed_on(const AccessUnit &unit, bool accepted);
    void report(const std::string &line);
    void set_heartbeat_deadline(Clock::time_point when);
    void begin_connection();
    void note_opening();
    void note_reading();
    bool stopping() const { return stop_.load(std::memory_order_relaxed); }

    const int channel_;
    const CameraSource source_;
    const FeedOptions options_;
    Input input_;
    AccessUnit first_unit_;
    Events events_;
    std::thread thread_;
    bool open_tried_ = false;
    bool started_ = false;
    bool input_opened_ = false; /* the main stream's, at least once */
    bool needs_key_ = false;    /* nothing goes to the decoder before a key frame */
    std::atomic<bool> stop_ = false;
    std::atomic<bool> opened_ = false; /* one of the two streams was, at least once */
    std::atomic<bool> broken_ = false; /* it ended by a failure, not by its own end */
    std::atomic<bool> waits_for_key_ = true;
    std::atomic<bool> sub_is_shown_ = false;                 /* shown_, to be read without gate_ */
    std::atomic<Clock::rep> heartbeat_deadline_ = INT64_MAX; /* ticks of the clock               */
    Clock::time_point started_at_;
    Clock::time_point paced_at_;         /* live: when the last unit went on    */
    int64_t paced_due_us_ = 0;           /* and when it was due                 */
    std::optional<Codec> decoder_codec_; /* of what the decoder was fed last; guarded by gate_ */

    /* Two streams, one decoder. */
    std::atomic<StreamChoice> wanted_ = StreamChoice::kMain;
    std::mutex gate_; /* held while a unit goes to the decoder; guards what follows */
    StreamChoice shown_ = StreamChoice::kMain;
    bool decoder_changes_ = false;            /* a unit was the first of another codec */
    std::atomic<uint64_t> laid_out_ = 0;      /* times that a layout was applied */
    std::atomic<int64_t> input_epoch_us_ = 0; /* of the main stream's times; 0 = not known */
    mutable std::mutex sub_lock_;             /* guards what follows */
    std::shared_ptr<Feeder> sub_;             /* null = it was never wanted */

    std::atomic<uint64_t> shown_at_layout_ = UINT64_MAX; /* pictures; UINT64_MAX = not known */
    DecoderWatch decoder_watch_;
    std::atomic<bool> undecodable_told_ = false; /* and not been mended since */
    CameraMeter meter_;

    std::mutex sleep_lock_; /* with sleep_, only to wake a waiting thread at stop */
    Condition sleep_;

    mutable std::mutex lock_; /* guards what follows */
    StreamFacts facts_;
    FeedCounters counters_;
    uint64_t clock_jumps_ = 0;
    std::optional<Clock::time_point> stopped_at_;
    std::string trouble_;
};

} // namespace nvrec
