/*
 * line_reader.h - takes the packets of a network camera off the line as they come, on a thread of its
 * own, and notes when they came. Who feeds decoders and files may take its time, and the time of a
 * packet's arrival is still true.
 *
 *   line -> [ packets with their time of arrival ] -> packet source
 *
 * No more than 32 MB wait. Beyond that the line waits, which over TCP makes the camera wait.
 *
 * A line that has brought no picture for ten seconds is given up, even if sound still comes over it.
 *
 * Included by packet_source*.cpp alone. Threads: start(), take() and stop() from one.
 */
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "camera/packet_demuxer.h"
#include "host/clock.h"

namespace nvrec
{

class PacketSource::LineReader
{
public:
    struct Arrival {
        Packet packet;
        Clock::time_point at;
        bool waited_for = false; /* the line was empty: it came just then */
    };

    /** @param came  told of every packet of pictures when it comes, on the reader's thread */
    LineReader(PacketSource &source, std::function<void(const Arrival &)> came);
    ~LineReader();
    LineReader(const LineReader &) = delete;
    LineReader &operator=(const LineReader &) = delete;

    /**
     * The next packet, of any stream.
     * @return 0, or why libavformat read no further once all that came before was taken
     */
    int take(Arrival *arrival);

    /** How the line ended is a matter of silence. Once take() has failed. */
    bool was_silent() const { return silent_; }

private:
    void run();

    PacketSource &source_;
    const std::function<void(const Arrival &)> came_;
    std::mutex lock_; /* guards what follows */
    Condition changed_;
    std::deque<Arrival> waiting_;
    size_t waiting_bytes_ = 0;
    int end_ = 0; /* why no more come; 0 = they do */
    bool silent_ = false;
    bool closing_ = false;
    std::thread thread_; /* last: it uses all of them */
};

} // namespace nvrec
