/* connection_reader.cpp - see connection_reader.h. */
#include "camera/connection_reader.h"

#include <utility>

namespace nvrec
{
namespace
{

constexpr auto kSilentLimit = std::chrono::seconds(10); /* without a picture, a connection is broken */
constexpr auto kWaited = std::chrono::milliseconds(2);  /* a read that took so long found nothing waiting */
constexpr size_t kMostWaiting_bytes = size_t{32} << 20;

} // namespace

PacketSource::ConnectionReader::ConnectionReader(PacketSource &source,
                                                 std::function<void(const Arrival &)> came)
    : source_(source), came_(std::move(came)), thread_([this] { run(); })
{
}

PacketSource::ConnectionReader::~ConnectionReader()
{
    source_.closing_.store(true, std::memory_order_relaxed);
    {
        const std::scoped_lock guard(lock_);
        closing_ = true;
        changed_.notify();
    }
    thread_.join();
    source_.closing_.store(false, std::memory_order_relaxed);
}

void PacketSource::ConnectionReader::run()
{
    int code = 0;
    bool gave_up = false;
    const int pictures = source_.demuxer_->stream->index;
    Clock::time_point last = Clock::now(); /* arrival of a picture */
    bool limit_begins = true;              /* sound alone does not renew it */
    while (code == 0) {
        Arrival arrival = {Packet(av_packet_alloc()), {}, false};
        const Clock::time_point begun = Clock::now();
        if (limit_begins && !gave_up) source_.give_up_at_ = begun + kSilentLimit;
        code =
            arrival.packet ? av_read_frame(source_.demuxer_->format, arrival.packet.get()) : AVERROR(ENOMEM);
        const Clock::time_point ended = Clock::now();
        /* A parser gives its last picture out when the connection is given up: that is no sign of life. */
        gave_up = gave_up || ended > source_.give_up_at_.load();
        arrival.at = gave_up ? last : ended;
        arrival.waited_for = !gave_up && ended - begun >= kWaited;
        if (code == 0 && !gave_up && came_) came_(arrival);
        limit_begins = code == 0 && arrival.packet->stream_index == pictures && arrival.packet->size > 0;
        if (limit_begins) last = arrival.at;

        std::unique_lock guard(lock_);
        if (code < 0) {
            end_ = code;
            silent_ = gave_up;
        } else {
            code = 0;
            waiting_bytes_ += static_cast<size_t>(arrival.packet->size);
            waiting_.push_back(std::move(arrival));
        }
        changed_.notify();
        limit_begins |= waiting_bytes_ >= kMostWaiting_bytes; /* the thread that takes the packets is slow */
        changed_.wait(guard, [this] { return closing_ || waiting_bytes_ < kMostWaiting_bytes; });
        if (closing_) return;
    }
}

int PacketSource::ConnectionReader::take(Arrival *arrival)
{
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this] { return !waiting_.empty() || end_ != 0; });
    if (waiting_.empty()) return end_;
    *arrival = std::move(waiting_.front());
    waiting_.pop_front();
    waiting_bytes_ -= static_cast<size_t>(arrival->packet->size);
    changed_.notify();
    return 0;
}

} // namespace nvrec
