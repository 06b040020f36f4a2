/*
 * feeder_streams.cpp - see feeder.h: chooses which of a camera's two streams the decoder is fed from.
 *
 *   main thread:  want_stream()
 *   main stream's thread:  send_main(), idle while the sub stream is shown and nobody else needs it
 *   sub stream's thread:   take_from_sub()
 *
 * Lock order: gate_, then sub_lock_ or lock_.
 */
#include "camera/feeder.h"

#include <algorithm>
#include <utility>

#include "camera/decoder_codec.h"
#include "camera/kept_out.h"
#include "camera/shown_channels.h"
#include "host/host.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kLayoutPatience = std::chrono::seconds(3);
constexpr auto kIdleLook = std::chrono::seconds(1); /* at how the sub stream does */

} // namespace

void Feeder::want_stream(StreamChoice choice)
{
    if (source_.sub_address.empty()) return;
    wanted_.store(choice, std::memory_order_relaxed);
    if (choice == StreamChoice::kSub && started_) start_sub();
    const std::scoped_lock guard(sleep_lock_);
    sleep_.notify();
}

std::shared_ptr<Feeder> Feeder::sub() const
{
    const std::scoped_lock guard(sub_lock_);
    return sub_;
}

/* A feeder that was asked to stop ends soon, and another one follows it. */
void Feeder::start_sub()
{
    const std::shared_ptr<Feeder> before = sub();
    if (before && !before->stopping()) return;
    if (before) before->join();

    CameraSource source = source_;
    source.address = source_.sub_address;
    source.sub_address.clear();
    FeedOptions options = options_;
    options.frames = 0;
    options.sound_channels = 0;
    const auto second = std::make_shared<Feeder>(channel_, source, options);
    if (const auto epoch_us = input_epoch_us_.load(); epoch_us != 0) second->input_.set_epoch_us(epoch_us);
    Events events;
    events.sink = [this, own = second.get()](const AccessUnit &unit, const StreamFacts &facts) {
        return take_from_sub(*own, unit, facts);
    };
    events.connection_began = [this] {
        if (sub_is_shown_.load(std::memory_order_relaxed)) expect_key();
    };
    events.trouble = [this](int, const std::string &line) { report("its sub stream: " + line); };
    {
        const std::scoped_lock guard(sub_lock_);
        sub_ = second;
    }
    if (!stopping()) second->start(std::move(events));
}

/* A unit of the main stream. @param shown  set to false when the sub stream has the decoder */
int32_t Feeder::send_main(const AccessUnit &unit, bool *shown)
{
    bool took_over = false;
    int32_t result = 0;
    {
        const std::scoped_lock guard(gate_);
        if (shown_ == StreamChoice::kSub) {
            const bool may = wanted_ == StreamChoice::kMain || !sub_is_well();
            *shown = took_over = may && unit.key;
            if (!took_over) return 0;
            shown_ = StreamChoice::kMain;
            sub_is_shown_.store(false, std::memory_order_relaxed);
        }
        result = send_to_decoder(unit, input_.facts());
    }
    send_again_if_laid_out(unit, input_.facts(), StreamChoice::kMain, *this);
    const auto second = sub();
    if (second && wanted_ == StreamChoice::kMain) second->ask_to_stop();
    return result;
}

/* A unit of the sub stream, on that stream's thread. A unit that is not shown counts as taken. */
int32_t Feeder::take_from_sub(Feeder &second, const AccessUnit &unit, const StreamFacts &facts)
{
    int32_t result = 0;
    const bool kept_out = is_kept_out(channel_);
    {
        const std::scoped_lock guard(gate_);
        if (shown_ == StreamChoice::kMain) {
            if (wanted_ == StreamChoice::kMain || !unit.key) return 0;
            shown_ = StreamChoice::kSub;
            sub_is_shown_.store(true, std::memory_order_relaxed);
            opened_.store(true);
        }
        result = send_to_decoder(unit, facts);
    }
    send_again_if_laid_out(unit, facts, StreamChoice::kSub, second);
    count(unit, result == 0);
    if (result == 0 && unit.key && is_decoded(channel_))
        waits_for_key_.store(false, std::memory_order_relaxed);
    if (unit.key) tell_undecodable();
    return kept_out || is_kept_out(channel_) ? 0 : result;
}

/*
 * When a unit of another codec makes the library create the decoder anew, that decoder is bound to no pane,
 * and the layout that binds it throws the unit away. So the unit is sent a second time once the layout is
 * applied. Units that come meanwhile wait on their connection.
 * @param sender  whose thread this is
 */
void Feeder::send_again_if_laid_out(const AccessUnit &unit, const StreamFacts &facts, StreamChoice stream,
                                    Feeder &sender)
{
    uint64_t before = 0;
    {
        const std::scoped_lock guard(gate_);
        if (!decoder_changes_) return;
        decoder_changes_ = false;
        before = laid_out_.load();
    }
    if (!events_.decoder_changed) return;
    events_.decoder_changed(channel_);
    const Clock::time_point limit = Clock::now() + kLayoutPatience;
    sender.set_heartbeat_deadline(limit);
    {
        std::unique_lock guard(sleep_lock_);
        const bool laid_out =
            sleep_.wait_until(guard, limit, [&] { return stopping() || laid_out_.load() != before; });
        if (!laid_out || stopping()) return;
    }
    const std::scoped_lock guard(gate_);
    if (shown_ == stream) send_to_decoder(unit, facts);
}

void Feeder::layout_done()
{
    const auto decoder = host::decoder_counters(channel_);
    shown_at_layout_ = decoder ? decoder->shown : UINT64_MAX;
    decoder_watch_.begin_again();
    laid_out_.fetch_add(1);
    const std::scoped_lock guard(sleep_lock_);
    sleep_.notify();
}

/*
 * A layout takes a while. It may throw away a key frame that comes meanwhile, with all else that the decoder
 * holds, and then the pane stays black until the next key frame.
 */
bool Feeder::shows_nothing_yet() const
{
    const auto decoder = host::decoder_counters(channel_);
    return decoder && is_decoded(channel_) && decoder->shown == shown_at_layout_;
}

int32_t Feeder::send_to_decoder(const AccessUnit &unit, const StreamFacts &facts)
{
    /*
     * Send a frame of another codec all the same, so that the decoder is changed before the frame is shown.
     */
    if (decoder_codec_ == facts.codec && is_held_back(channel_)) return 0;
    FrameInfo frame = {};
    frame.frame_type = unit.key ? 1 : 0;
    frame.media = FRAME_MEDIA_VIDEO;
    frame.length = static_cast<uint32_t>(unit.bytes.size());
    frame.width = facts.width_px;
    frame.height = facts.height_px;
    frame.data = const_cast<uint8_t *>(unit.bytes.data()); /* only read by the library */
    frame.channel = static_cast<uint32_t>(channel_);
    frame.pts = static_cast<uint64_t>(unit.pts_us);
    int32_t quality = source_.link_quality > 0 ? source_.link_quality : options_.link_quality;
    if (options_.link_measured || source_.link_measured) quality = status().link_quality;
    const int32_t result =
        ext_send_stream(&frame, static_cast<uint32_t>(facts.codec), quality, options_.rate_class);
    const bool looked_at = !is_kept_out_by_zoom(channel_) && frame.length <= NVRHAL_MAX_SEND_BYTES;
    if (result == 0 || looked_at) note_live_codec(channel_, facts.codec);
    /* Only now: the library changes the decoder when it sees the new codec. */
    if (result == 0 && decoder_codec_ != facts.codec) {
        decoder_codec_ = facts.codec;
        decoder_changes_ = true;
    }
    if (result == 0 && unit.key) watch_decoder();
    return result;
}

void Feeder::watch_decoder()
{
    const auto decoder = host::decoder_counters(channel_);
    if (decoder && is_decoded(channel_))
        decoder_watch_.key_sent(decoder->decoded, Clock::now());
    else
        decoder_watch_.begin_again();
}

bool Feeder::sub_is_well() const
{
    const auto second = sub();
    return second && !second->stopping() && second->status().state == CameraState::kLive;
}

/* Whether nobody needs the main stream now. */
bool Feeder::is_idle() const
{
    if (source_.sub_address.empty() || !input_.live() || wanted_ != StreamChoice::kSub) return false;
    const bool kept = channel_ < 32 && (options_.main_channels >> channel_ & 1) != 0;
    return !kept && sub_is_shown_.load(std::memory_order_relaxed) && sub_is_well();
}

/* Close the connection until the main stream is needed. @return false = the recorder stops */
bool Feeder::wait_while_idle()
{
    input_.close();
    while (is_idle() && !stopping()) {
        const Clock::time_point look_at = Clock::now() + kIdleLook;
        set_heartbeat_deadline(look_at);
        std::unique_lock guard(sleep_lock_);
        sleep_.wait_until(guard, look_at, [this] { return stopping() || wanted_ != StreamChoice::kSub; });
    }
    if (stopping()) return false;
    meter_.begin_again();
    note_opening();
    if (input_.open(options_.open_limit)) {
        begin_connection();
        return true;
    }
    return !stopping() && reconnect(input_.error());
}

} // namespace nvrec
