/* feeder.cpp - see feeder.h. */
#include "camera/feeder.h"

#include <algorithm>
#include <utility>

#include "camera/kept_out.h"
#include "host/host.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kDecoderPatience = std::chrono::seconds(2); /* for one unit, when feeding as fast as it goes */
constexpr double kCatchUp = 1.5;             /* times a camera's rate, while it is behind       */
constexpr int64_t kLongestPace_us = 100'000; /* whatever a camera's clock says                  */

std::string refusal_of(const AccessUnit &unit)
{
    const std::string size = std::to_string(unit.bytes.size()) + " bytes";
    if (unit.bytes.size() <= NVRHAL_MAX_SEND_BYTES) return "the library refused a frame of " + size;
    return "the library refused a frame of " + size + ": it takes at most " +
           std::to_string(NVRHAL_MAX_SEND_BYTES);
}

} // namespace

Feeder::Feeder(int channel, const CameraSource &source, const FeedOptions &options)
    : channel_(channel), source_(source), options_(options),
      input_(source.address_of(StreamChoice::kMain), source.transport)
{
    input_.watch_arrivals(
        [this](Clock::time_point at, size_t bytes, bool key, std::optional<int64_t> camera_us) {
            meter_.arrived(at, bytes, key, camera_us);
        });
    if (source.sound && channel < 32 && (options.sound_channels >> channel & 1) != 0) input_.want_sound();
}

Feeder::~Feeder()
{
    ask_to_stop();
    join();
    input_.close(); /* its reading thread calls the meter, which is destroyed first */
}

int32_t Feeder::send_first()
{
    const int32_t result = send_to_decoder(first_unit_, input_.facts());
    decoder_changes_ = false; /* the layout comes next */
    return result;
}

void Feeder::start(Events events)
{
    events_ = std::move(events);
    started_at_ = Clock::now();
    set_heartbeat_deadline(Clock::now());
    started_ = true;
    thread_ = std::thread([this] { run(); });
    if (wanted_ == StreamChoice::kSub) start_sub();
}

void Feeder::ask_to_stop()
{
    {
        const std::scoped_lock guard(lock_);
        if (!stopped_at_) stopped_at_ = Clock::now();
    }
    stop_.store(true, std::memory_order_relaxed);
    input_.interrupt();
    if (const auto second = sub()) second->ask_to_stop();
    const std::scoped_lock guard(sleep_lock_);
    sleep_.notify();
}

void Feeder::join()
{
    if (thread_.joinable()) thread_.join();
    if (const auto second = sub()) second->join();
}

void Feeder::hang_up()
{
    input_.close();
    if (const auto second = sub()) second->hang_up();
}

void Feeder::go_on_from(const Feeder &before)
{
    const int64_t epoch_us = before.input_epoch_us_.load();
    input_epoch_us_ = epoch_us; /* for its successor, too, if this camera never answers */
    if (input_.live() && epoch_us != 0) input_.set_epoch_us(epoch_us);
}

void Feeder::run()
{
    if (!open_tried_) {
        note_opening();
        open();
        started_at_ = Clock::now();
    }
    feed();
    if (events_.sink && stopping()) { /* a sub stream: its successor may not come for days */
        note_opening();
        input_.close();
    }
    set_heartbeat_deadline(Clock::time_point::max());
    if (!broken_.load() && !stopping()) meter_.ended();
    if (events_.ended) events_.ended(channel_);
}

void Feeder::feed()
{
    AccessUnit unit = std::move(first_unit_);
    if (!input_opened_ && (!reconnect(trouble()) || !next(&unit))) return;

    uint64_t frames = 0;
    bool refused_before = false; /* one message for each run of refusals, not for each frame */
    while (!stopping()) {
        wait_due(unit);
        if (stopping()) return;
        set_heartbeat_deadline(Clock::now());
        pass_sound(unit, unit.due_us);
        if (events_.unit) events_.unit(channel_, unit, input_.facts());
        const bool kept_out = is_kept_out(channel_);
        needs_key_ = needs_key_ && !unit.key;
        bool shown = !needs_key_;
        const bool accepted = needs_key_ || send(unit, &shown) == 0;
        const bool wanted = shown && (accepted || (!kept_out && !is_kept_out(channel_)));
        if (shown) count(unit, accepted);
        if (!accepted && !refused_before && wanted) report(refusal_of(unit));
        refused_before = !accepted;
        if (wanted) note_handed_on(unit, accepted);
        if (options_.frames != 0 && ++frames >= options_.frames) return;
        if (!next(&unit)) {
            if (!stopping()) pass_last_sound(unit);
            return;
        }
    }
}

/* @param shown  set to false when it is not for the decoder */
int32_t Feeder::send(const AccessUnit &unit, bool *shown)
{
    return events_.sink ? events_.sink(unit, input_.facts()) : send_main(unit, shown);
}

/* @param unit  the picture that it belongs to, or the last one */
void Feeder::pass_sound(const AccessUnit &unit, int64_t until_us)
{
    for (SoundPacket &packet : input_.take_sound_packets(until_us)) {
        packet.wall_us = unit.wall_us + packet.pts_us - unit.due_us;
        if (events_.sound_packet) events_.sound_packet(channel_, packet);
    }
    for (const SoundBlock &block : input_.take_sound(until_us))
        if (events_.sound) events_.sound(channel_, block);
}

/*
 * Send the sound that lasts longer than the pictures at its own pace: the pools have no room for seconds of
 * it.
 */
void Feeder::pass_last_sound(const AccessUnit &last)
{
    AccessUnit moment = last; /* as if pictures went on */
    moment.bytes.clear();
    while (const auto due_us = input_.next_sound_us()) {
        moment.wall_us += *due_us - moment.due_us;
        moment.due_us = *due_us;
        if (!options_.as_fast_as_can) wait_due(moment);
        if (stopping()) return;
        pass_sound(moment, *due_us);
    }
    pass_sound(moment, INT64_MAX);
}

/* The next unit, across the ends of files and broken connections; false when there is none. */
bool Feeder::next(AccessUnit *unit)
{
    bool just_rewound = false;
    while (!stopping()) {
        if (is_idle() && !wait_while_idle()) return false;
        note_reading();
        switch (input_.read(unit)) {
        case Input::Read::kUnit:
            if (unit->key) note_facts();
            if (!input_.live()) meter_.arrived(Clock::now(), unit->bytes.size(), unit->key, std::nullopt);
            note_jump(input_.jumped_us());
            meter_.missed(input_.take_missed());
            return true;
        case Input::Read::kInterrupted: return false;
        case Input::Read::kEnd:
            if (input_.live()) {
                if (!reconnect("the camera ended the session")) return false;
                break;
            }
            if (!options_.loop && !source_.loop) return false;
            if (just_rewound || !input_.rewind()) {
                report(just_rewound ? "nothing to read after going back to its start" : input_.error());
                broken_.store(true);
                return false;
            }
            just_rewound = true;
            {
                const std::scoped_lock guard(lock_);
                ++counters_.passes;
            }
            break;
        case Input::Read::kFailed:
            if (!reconnect(input_.error())) return false;
            break;
        }
    }
    return false;
}

/* False when the recorder stops first. */
bool Feeder::wait_until(Clock::time_point when)
{
    set_heartbeat_deadline(when);
    std::unique_lock guard(sleep_lock_);
    return !sleep_.wait_until(guard, when, [this] { return stopping(); });
}

void Feeder::wait_due(const AccessUnit &unit)
{
    if (input_.live()) {
        pace(unit);
        return;
    }
    if (options_.as_fast_as_can && events_.sink) return; /* the sink paces */
    if (options_.as_fast_as_can) {
        set_heartbeat_deadline(Clock::now() + kDecoderPatience);
        host::wait_for_decoder(channel_, kDecoderPatience);
        return;
    }
    const auto due =
        std::chrono::duration<double, std::micro>(static_cast<double>(unit.due_us) / options_.speed);
    wait_until(started_at_ + std::chrono::duration_cast<Clock::duration>(due));
}

/*
 * The camera sets the pace. But units that waited on the connection, because the network stalled or the other
 * cameras were not ready, come all at once, and the decoder and the pools have no room for seconds of them.
 */
void Feeder::pace(const AccessUnit &unit)
{
    const auto apart_us = static_cast<int64_t>(static_cast<double>(unit.due_us - paced_due_us_) / kCatchUp);
    const auto when =
        paced_at_ + std::chrono::microseconds(std::clamp<int64_t>(apart_us, 0, kLongestPace_us));
    wait_until(std::max(when, Clock::now())); /* a deadline in the past would look like a thread that hangs */
    paced_due_us_ = unit.due_us;
    paced_at_ = Clock::now();
}

void Feeder::set_heartbeat_deadline(Clock::time_point when)
{
    heartbeat_deadline_.store(when.time_since_epoch().count(), std::memory_order_relaxed);
}

Clock::time_point Feeder::heartbeat_deadline() const
{
    const Clock::time_point own(Clock::duration(heartbeat_deadline_.load(std::memory_order_relaxed)));
    const auto second = sub();
    return second ? std::min(own, second->heartbeat_deadline()) : own;
}

} // namespace nvrec
