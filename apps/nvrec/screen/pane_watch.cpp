/* pane_watch.cpp - see pane_watch.h. */
#include "screen/pane_watch.h"

#include <algorithm>

#include "nvrhal.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr auto kSettles = std::chrono::milliseconds(400); /* after a layout, without a notice to wait */
constexpr auto kAnalogPeriod = std::chrono::seconds(1);

Clock::time_point time_of(const std::atomic<Clock::rep> &ticks)
{
    return Clock::time_point(Clock::duration(ticks.load(std::memory_order_relaxed)));
}

bool playback_has_the_screen()
{
    return std::atomic_ref<uint32_t>(playback_status).load(std::memory_order_relaxed) == 1;
}

} // namespace

void PaneWatch::start(WallControl &wall, std::function<void()> changed)
{
    wall_ = &wall;
    changed_ = std::move(changed);
    laid_out_at_ = Clock::now();
    analog_.start(wall.session().motion(), wall.session().channels());
}

void PaneWatch::on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts)
{
    if (channel < 0 || static_cast<size_t>(channel) >= seen_.size()) return;
    Seen &seen = seen_[static_cast<size_t>(channel)];
    seen.unit_at.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
    seen.sound.store(facts.sound, std::memory_order_relaxed);
    if (unit.key) {
        const size_t size = unit.bytes.size();
        seen.refused_bytes.store(size > NVRHAL_MAX_SEND_BYTES ? size : 0, std::memory_order_relaxed);
    }
    if (seen.notice.load(std::memory_order_relaxed) && changed_) changed_();
}

void PaneWatch::forget(int channel)
{
    if (channel < 0 || static_cast<size_t>(channel) >= seen_.size()) return;
    Seen &seen = seen_[static_cast<size_t>(channel)];
    seen.unit_at = 0;
    seen.refused_bytes = 0;
    seen.sound = false;
}

void PaneWatch::look(Clock::time_point now)
{
    if (now < looked_at_ + kAnalogPeriod) return;
    looked_at_ = now;
    analog_.look();
}

PaneState PaneWatch::state_of(const Feeder &camera, Clock::time_point now) const
{
    const int channel = camera.channel();
    PaneState state;
    if (channel < 0 || static_cast<size_t>(channel) >= seen_.size()) return state;
    if (!camera.has_camera()) return state; /* room for a camera: nothing is missing */
    Seen &seen = seen_[static_cast<size_t>(channel)];
    const CameraStatus status = camera.status();
    state.recording = wall_->recording(channel);
    state.sound = seen.sound.load(std::memory_order_relaxed) && now - time_of(seen.unit_at) < kSilentAfter;
    state.motion = analog_.moves(channel);
    state.no_signal = analog_.has_no_signal(channel);
    if (!playback_has_the_screen()) {
        state.too_large_bytes = seen.refused_bytes.load(std::memory_order_relaxed);
        state.notice = notice_of(status, state.too_large_bytes, now);
    }
    if (state.notice == PaneNotice::kNoVideo) state.since = status.since_wall_us / 1'000'000;
    if (state.notice == PaneNotice::kMissing || state.notice == PaneNotice::kRefused)
        state.reason = status.last_error;
    if (state.notice != PaneNotice::kRefused) state.too_large_bytes = 0;
    state.undecodable = state.notice == PaneNotice::kRefused && status.undecodable;
    seen.notice.store(state.notice != PaneNotice::kNone, std::memory_order_relaxed);
    return state;
}

PaneNotice PaneWatch::notice_of(const CameraStatus &status, uint64_t too_large_bytes,
                                Clock::time_point now) const
{
    const bool settled = now - laid_out_at_ >= kSettles;
    switch (status.state) {
    case CameraState::kConnecting: return PaneNotice::kMissing;
    case CameraState::kSilent: return PaneNotice::kNoVideo;
    case CameraState::kRefused: return PaneNotice::kRefused;
    case CameraState::kEnded: /* its last picture stays, unless a layout has taken it off */
        return status.waits_for_key && settled ? PaneNotice::kNoVideo : PaneNotice::kNone;
    case CameraState::kLive: break;
    }
    if (!status.waits_for_key) return PaneNotice::kNone;
    if (too_large_bytes > 0 && !status.sub_stream) return PaneNotice::kRefused;
    return settled ? PaneNotice::kWaitsForKey : PaneNotice::kNone;
}

Clock::time_point PaneWatch::next_change(Clock::time_point now) const
{
    Clock::time_point next = Clock::time_point::max();
    auto consider = [&next, now](Clock::time_point when) {
        if (when > now) next = std::min(next, when);
    };
    for (const Seen &seen : seen_) {
        if (seen.unit_at.load(std::memory_order_relaxed) != 0) consider(time_of(seen.unit_at) + kSilentAfter);
    }
    if (!wall_->cameras().empty()) consider(laid_out_at_ + kSettles);
    return next;
}

} // namespace nvrec
