/*
 * input.h - one camera: whole encoded pictures from a file or a network address.
 *
 * What comes in: H.264 and H.265 as elementary stream, in MP4, MKV or any other container of
 * libavformat, or from an RTSP address. What comes out: one access unit a read, in Annex B form
 * (start codes; parameter sets in front of key frames), so that a unit can go to a decoder as it is.
 *
 * Time: a unit is due a number of microseconds after the input's first unit. In containers the decoding time
 * stamps tell it. Elementary streams carry none and run at the frame rate of their parameter sets, or at 25
 * frames a second if these tell none. For network cameras see live_clock.h.
 *
 * Threads: one thread reads; interrupt() may come from any.
 */
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "camera/live_clock.h"
#include "camera/packet_source.h"
#include "camera/sound_packet.h"
#include "camera/unit_clock.h"
#include "camera/waiting_sound.h"
#include "host/clock.h"

namespace nvrec
{

/** One encoded picture. */
struct AccessUnit {
    std::vector<uint8_t> bytes; /* Annex B                                               */
    bool key = false;           /* a decoder can begin here                              */
    int64_t pts_us = 0;         /* presentation time stamp, from the input's first unit on */
    int64_t wall_us = 0;        /* time of day of the picture by the recorder's clock, us since 1970 */
    int64_t due_us = 0;         /* when to send it, from the first unit on; never falls back */
};

class Input
{
public:
    using Read = PacketSource::Read;

    explicit Input(std::string address, Transport transport = Transport::kAuto)
        : source_(std::move(address), transport)
    {
    }

    /**
     * Open the address and learn its codec, size and frame rate. Closes what was open.
     * @param limit  how long it may take
     * @return false with the reason in error().
     */
    bool open(std::chrono::milliseconds limit);
    void close() { source_.close(); }

    /** Decode the sound too, from the next open() on. */
    void want_sound() { sound_wanted_ = true; }

    /**
     * The sound that was read so far and not taken yet, in order, up to a time on the clock of due_us;
     * INT64_MAX = all there is.
     */
    std::vector<SoundBlock> take_sound(int64_t until_us) { return sound_.take(until_us); }

    /** The same sound as it came, likewise; wall_us is not set. */
    std::vector<SoundPacket> take_sound_packets(int64_t until_us) { return sound_packets_.take(until_us); }

    /** When the first block of sound that waits is due; nothing = none waits. */
    std::optional<int64_t> next_sound_us() const { return sound_.first_us(); }

    /** By how much the camera's clock had been set when the last unit came; 0 = it had not. */
    int64_t jumped_us() const { return jumped_us_; }

    /** The monotonic time from which a network camera's times count, once it has one. */
    std::optional<int64_t> epoch_us() const { return live_clock_.epoch_us(); }
    void set_epoch_us(int64_t epoch_us) { live_clock_.set_epoch_us(epoch_us); }

    /** Packets of the connection that did not come, since the last call. */
    uint64_t take_missed() { return source_.take_missed(); }

    /** Called with every picture of a network camera as it comes, on a thread of the input's. Before open().
     */
    void watch_arrivals(PacketSource::ArrivalWatch watch) { source_.watch_arrivals(std::move(watch)); }

    /** The next access unit, whatever it is. kFailed: the reason is in error(). */
    Read read(AccessUnit *unit);

    /** The same, passing over everything up to the next key frame. */
    Read read_key(AccessUnit *unit);

    /** Begin again at the first unit; due times go on from the last one. Files only. */
    bool rewind();

    /**
     * Go to the last key frame at or before a time, counted from the file's first unit, and read it. If there
     * is none before that time, go to the first one. From then on the units' times are places in the file. At
     * least one unit must have been read before. Files only; the bare stream of a codec has no index and is
     * read through from its start.
     * @return false with the reason in error().
     */
    bool seek(int64_t target_us, AccessUnit *unit);

    /** Make open() and read() return soon, now and in future. */
    void interrupt() { source_.interrupt(); }

    /** True for a network address: units come in real time, and the connection may break. */
    bool live() const { return source_.live(); }

    /** Units that a decoder holds back before it shows the first; known once a unit was read. */
    int held_back() const { return source_.held_back(); }

    const std::string &address() const { return source_.address(); }
    const StreamFacts &facts() const { return source_.facts(); }
    const std::string &error() const { return source_.error(); }

private:
    bool seek_in_bare_stream(int64_t target_us, AccessUnit *unit);
    void place_sound();
    void stamp_arrived(AccessUnit *unit);
    void stamp_place(AccessUnit *unit);

    PacketSource source_;
    UnitClock clock_;      /* of a file           */
    LiveClock live_clock_; /* of a network camera */
    TimeOfDay time_of_day_;
    int64_t jumped_us_ = 0;
    bool sound_wanted_ = false;
    SoundPlace sound_place_;
    WaitingSound<SoundPacket> sound_packets_;
    WaitingSound<SoundBlock> sound_;
};

} // namespace nvrec
