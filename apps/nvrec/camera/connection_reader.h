/*
 * connection_reader.h - reads the packets of a network camera from its connection as they come, on a thread
 * of its own, and notes when each came. So the times of arrival are right even when the thread that feeds
 * decoders and files is slow to take the packets.
 *
 *   connection -> [ packets with their time of arrival ] -> packet source
 *
 * No more than 32 MB wait here. Beyond that nothing is read from the connection, which over TCP makes the
 * camera wait.
 *
 * A connection that has brought no picture for ten seconds is given up, even if sound still comes over it.
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

class PacketSource::ConnectionReader
{
public:
    struct Arrival {
        Packet packet;
        Clock::time_point at;
        bool waited_for = false; /* nothing else was waiting: it came just then */
    };

    /** @param came  told of every packet of pictures when it comes, on the reader's thread */
    ConnectionReader(PacketSource &source, std::function<void(const Arrival &)> came);
    ~ConnectionReader();
    ConnectionReader(const ConnectionReader &) = delete;
    ConnectionReader &operator=(const ConnectionReader &) = delete;

    /**
     * The next packet, of any stream.
     * @return 0, or why libavformat read no further once all that came before was taken
     */
    int take(Arrival *arrival);

    /** Whether the connection was given up because no picture came. Once take() has failed. */
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
