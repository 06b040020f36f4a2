/*
 * input.h - one camera: whole encoded pictures from a file or a network address.
 *
 * What comes in: H.264 and H.265 as elementary stream, in MP4, MKV or any other container of
 * libavformat, or from an RTSP address. What comes out: one access unit a read, in Annex B form
 * (start codes; parameter sets in front of key frames), so that a unit can go to a decoder as it is.
 *
 * Time: a unit is due a number of microseconds after the input's first unit. Containers say so by
 * their decoding time stamps; elementary streams carry none and run at the frame rate of their
 * parameter sets, 25 frames a second where those are silent.
 *
 * Threads: one thread reads; interrupt() may come from any.
 */
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "camera/sound.h"
#include "host/clock.h"

struct AVCodecParameters;

namespace nvrec
{

/** Codec codes as ext_send_stream takes them. */
enum class Codec : uint32_t { kH264 = 0, kH265 = 1 };

const char *codec_name(Codec codec);

/** What an opened input delivers. Sizes follow the stream when they change. */
struct StreamFacts {
    Codec codec = Codec::kH264;
    uint32_t width_px = 0;
    uint32_t height_px = 0;
    double frame_rate = 0; /* frames per second */
    bool sound = false;    /* it comes with sound, and sound was wanted */
};

/** One encoded picture. */
struct AccessUnit {
    std::vector<uint8_t> bytes; /* Annex B                                               */
    bool key = false;           /* a decoder can begin here                              */
    int64_t pts_us = 0;         /* presentation time stamp, from the input's first unit on */
    int64_t due_us = 0;         /* when to send it, from the first unit on; never falls back */
};

class Input
{
public:
    enum class Read { kUnit, kEnd, kFailed, kInterrupted };

    explicit Input(std::string address);
    ~Input();
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    /**
     * Open the address and learn its codec, size and frame rate. Closes what was open.
     * @param limit  how long it may take
     * @return false with the reason in error().
     */
    bool open(std::chrono::milliseconds limit);
    void close();

    /** Decode the sound too, from the next open() on. */
    void want_sound() { sound_wanted_ = true; }

    /**
     * The sound read on the way to the last unit and not taken yet, in order, up to a time on the
     * clock of due_us; INT64_MAX = all there is.
     */
    std::vector<SoundBlock> take_sound(int64_t until_us);

    /** The next access unit, whatever it is. kFailed: the reason is in error(). */
    Read read(AccessUnit *unit);

    /** The same, passing over everything up to the next key frame. */
    Read read_key(AccessUnit *unit);

    /** Begin again at the first unit; due times go on where they stand. Files only. */
    bool rewind();

    /**
     * Go to the last key frame at or before a time, counted from the file's first unit, and read it;
     * before the first key frame, to that one. From here on units' times are places in the file.
     * A file must have been read from before. Files only; the bare stream of a codec, which has no
     * index, is read through from its start.
     * @return false with the reason in error().
     */
    bool seek(int64_t target_us, AccessUnit *unit);

    /** Make open() and read() return soon, now and in future. */
    void interrupt() { interrupted_.store(true, std::memory_order_relaxed); }

    /** True for a network address: units come when they come, and the line may break. */
    bool live() const { return live_; }

    const std::string &address() const { return address_; }
    const StreamFacts &facts() const { return facts_; }
    const std::string &error() const { return error_; }

private:
    struct Demuxer;
    bool open_stream();
    bool choose_filter(const AVCodecParameters *parameters);
    bool open_parser(const AVCodecParameters *parameters);
    int read_packet();
    bool first_is_ready() const;
    Read next_packet();
    bool seek_in_bare_stream(int64_t target_us, AccessUnit *unit);
    int to_first_byte();
    void forget_position();
    void stamp(AccessUnit *unit);
    void place_sound();
    void look_into(const AccessUnit &unit);
    bool fail(const std::string &reason);
    bool fail(const std::string &what, int av_code);
    static int stop_asked(void *input);

    const std::string address_;
    const bool live_;
    std::atomic<bool> interrupted_ = false;
    Clock::time_point give_up_at_; /* of the blocking call under way */
    std::unique_ptr<Demuxer> demuxer_;
    StreamFacts facts_;
    std::string error_;

    int64_t units_in_pass_ = 0;        /* since open or rewind                      */
    int64_t pass_start_us_ = 0;        /* due time of this pass's first unit         */
    int64_t first_dts_us_ = INT64_MIN; /* the pass's first decoding time stamp      */
    int64_t first_pts_us_ = INT64_MIN; /* the file's first presentation time stamp   */
    int64_t last_due_us_ = 0;
    Clock::time_point last_unit_at_; /* when the last unit was read, if ever */

    bool sound_wanted_ = false;
    std::vector<SoundBlock> sound_; /* not taken yet; times on the clock of due_us */
};

} // namespace nvrec
