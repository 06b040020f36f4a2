/*
 * packet_source.h - the packets of one video stream, out of a file or from a network address, by
 * libavformat; its sound is decoded beside it.
 *
 *   address -> demuxer -> packets ahead -> bit-stream filter -> one unit a packet, in Annex B form
 *                   \--> SoundTrack
 *
 * A network camera is read by a thread of its own, see connection_reader.h. In files, sound lies a little
 * behind the pictures that it belongs to, so pictures are read ahead until their sound is there.
 *
 * Threads: one thread reads; interrupt() may come from any.
 */
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera_source.h"
#include "camera/codec.h"
#include "camera/live_clock.h"
#include "camera/sound.h"
#include "camera/sound_packet.h"
#include "camera/unit_clock.h"
#include "host/clock.h"

struct AVCodecParameters;
struct AVPacket;

namespace nvrec
{

struct TimedPacket;

/** What an opened input delivers. Sizes follow the stream when they change. */
struct StreamFacts {
    Codec codec = Codec::kH264;
    uint32_t width_px = 0;
    uint32_t height_px = 0;
    double frame_rate = 0; /* frames per second */
    bool sound = false;    /* it comes with sound, and sound was wanted */
};

class PacketSource
{
public:
    enum class Read { kUnit, kEnd, kFailed, kInterrupted };

    explicit PacketSource(std::string address, Transport transport = Transport::kAuto);
    ~PacketSource();
    PacketSource(const PacketSource &) = delete;
    PacketSource &operator=(const PacketSource &) = delete;

    /** Open the address, and close what was open. @return false with the reason in error(). */
    bool open(std::chrono::milliseconds limit, bool with_sound);
    void close();
    bool is_open() const { return demuxer_ != nullptr; }

    /** The next unit; it stays until the call after it. */
    Read next();
    const uint8_t *bytes() const;
    size_t size() const;
    bool is_key() const;
    UnitClock::PacketTimes times() const;
    /** When it arrived. Network cameras only. */
    Clock::time_point arrived_at() const { return unit_arrived_at_; }

    /**
     * After open(), of a network camera: take the packets that already wait on the connection, for at most
     * half a second. next() delivers them. @return the times of the pictures among them
     */
    std::vector<LiveClock::Arrived> catch_up();

    /** Called on the reading thread with every picture of a network camera as it comes. */
    using ArrivalWatch =
        std::function<void(Clock::time_point at, size_t bytes, bool key, std::optional<int64_t> camera_us)>;
    void watch_arrivals(ArrivalWatch watch) { watch_ = std::move(watch); }

    /** Packets of the connection that are known to be lost, since the last call. Any thread. */
    uint64_t take_missed() { return missed_.exchange(0, std::memory_order_relaxed); }
    void add_missed(uint64_t packets) { missed_.fetch_add(packets, std::memory_order_relaxed); }

    /** The sound packets read since the last call, if sound was wanted; times of the stream's own clock. */
    std::vector<SoundPacket> take_sound_packets() { return std::exchange(sound_packets_, {}); }

    /** Release the unit at hand. */
    void release();

    /**
     * Go to the first byte (of a bare stream), to the first picture, or to the last key frame at or
     * before a time of the stream's clock.
     * @param failure  how error() begins when that fails
     */
    bool to_first_byte(const char *failure);
    bool to_first_picture(const char *failure);
    bool to_key_before(int64_t pts_us, const char *failure);

    /** Look into a key frame, which carries the parameter sets: the picture's size may have changed. */
    void look_into(const uint8_t *unit, size_t size);

    /** Make open() and next() return soon, now and in future. */
    void interrupt() { interrupted_.store(true, std::memory_order_relaxed); }
    bool interrupted() const { return interrupted_.load(std::memory_order_relaxed); }

    /** True for a network address. */
    bool live() const { return live_; }
    /** The bare stream of a codec: no time stamps, no index. */
    bool is_bare() const;
    /** Its stamps jump where files were joined. */
    bool may_be_joined() const;
    /** Units that a decoder holds back before it shows the first. */
    int held_back() const;

    const std::string &address() const { return address_; }
    const StreamFacts &facts() const { return facts_; }
    const std::string &error() const { return error_; }

    /** Null = there is none, or none was wanted. */
    SoundTrack *sound() const;

    bool fail(const std::string &reason);

private:
    struct Demuxer;
    class ConnectionReader;
    bool open_stream(bool with_sound);
    int open_address();
    int open_format(Transport transport);
    std::string reason_of(int av_code) const;
    bool choose_filter(const AVCodecParameters *parameters);
    bool open_parser(const AVCodecParameters *parameters);
    int read_packet();
    int read_connection();
    void start_reading();
    void sort(TimedPacket packet);
    void keep_sound(const AVPacket &packet);
    void note_sound_codec();
    bool first_is_ready() const;
    void forget_position();
    bool fail(const std::string &what, int av_code);
    static int stop_asked(void *source);

    const std::string address_;
    const Transport transport_;
    const bool live_;
    std::atomic<bool> interrupted_ = false;
    Transport worked_ = Transport::kAuto; /* the last time */
    std::atomic<uint64_t> missed_ = 0;
    std::atomic<bool> closing_ = false;
    bool hanging_up_ = false;                   /* while no other thread reads */
    std::atomic<Clock::time_point> give_up_at_; /* of the blocking call under way */
    std::unique_ptr<Demuxer> demuxer_;
    std::unique_ptr<ConnectionReader> connection_; /* of a network camera; it reads from the demuxer */
    ArrivalWatch watch_;
    Clock::time_point unit_arrived_at_;
    std::vector<SoundPacket> sound_packets_;
    std::shared_ptr<const SoundCodec> sound_codec_;
    int held_back_ = 0; /* of a network camera, which is read on another thread */
    StreamFacts facts_;
    std::string error_;
};

} // namespace nvrec
