/* playback.cpp - see playback.h. */
#include "play/playback.h"

#include <algorithm>

namespace nvrec
{

Playback::Playback(const std::vector<TrackPlan> &tracks)
{
    for (size_t i = 0; i < tracks.size(); ++i)
        tracks_.push_back(std::make_unique<PlaybackTrack>(tracks[i], static_cast<int>(i) % kPlayers));
}

Playback::Playback(const std::vector<std::string> &files)
{
    for (size_t i = 0; i < files.size(); ++i)
        tracks_.push_back(
            std::make_unique<PlaybackTrack>(TrackPlan{"", {{files[i], 0}}}, static_cast<int>(i) % kPlayers));
}

Playback::~Playback()
{
    stop();
}

size_t Playback::open(int64_t position_us)
{
    size_t opened = 0;
    for (const auto &track : tracks_)
        opened += track->open(position_us);
    return opened;
}

void Playback::start(std::function<void()> changed)
{
    changed_ = std::move(changed);
    freeze();
    anchor(0);
    thread_ = std::thread([this] { run(); });
}

void Playback::stop()
{
    if (!thread_.joinable()) return;
    if (!frozen_.owns_lock()) frozen_ = std::unique_lock(lock_);
    quit_ = true;
    frozen_.unlock();
    wake_.notify();
    thread_.join();
}

/* Main thread: the lock, unless it is held already. */
std::unique_lock<std::mutex> Playback::hold() const
{
    return frozen_.owns_lock() ? std::unique_lock<std::mutex>() : std::unique_lock(lock_);
}

void Playback::freeze()
{
    if (frozen_.owns_lock()) return;
    frozen_ = std::unique_lock(lock_);
    anchor(position_at(Clock::now()));
}

void Playback::make_decoders_fit(const std::vector<size_t> &tracks)
{
    if (!frozen_.owns_lock()) return;
    for (const size_t i : tracks) {
        tracks_[i]->turn_to(anchor_us_);
        tracks_[i]->make_decoder_fit();
    }
}

void Playback::thaw(const std::vector<size_t> &tracks)
{
    if (!frozen_.owns_lock()) return;
    shown_ = tracks;
    position_tracks();
    frozen_.unlock();
    wake_.notify();
}

void Playback::pause(bool paused)
{
    const auto guard = hold();
    if (paused_ == paused) return;
    if (!frozen_.owns_lock()) anchor(position_at(Clock::now()));
    paused_ = paused;
    if (paused) wait_for_decoders(); /* what is on the screen now stays there */
    orders_ = true;
    wake_.notify();
}

int64_t Playback::seek(int64_t position_us)
{
    const auto guard = hold();
    for (const size_t i : shown_)
        tracks_[i]->flush();
    int64_t reached_us = INT64_MIN;
    for (const size_t i : shown_) {
        if (tracks_[i]->seek(std::max<int64_t>(0, position_us)))
            reached_us = std::max(reached_us, tracks_[i]->next().due_us);
    }
    anchor(reached_us == INT64_MIN ? 0 : reached_us);
    catch_up();
    wake_.notify();
    return anchor_us_;
}

void Playback::seek_exactly(int64_t position_us)
{
    const auto guard = hold();
    for (const size_t i : shown_)
        tracks_[i]->flush();
    anchor(std::max<int64_t>(0, position_us));
    position_tracks();
    wake_.notify();
}

bool Playback::ends_before(int64_t position_us)
{
    const auto guard = hold();
    return std::all_of(shown_.begin(), shown_.end(),
                       [&](size_t i) { return tracks_[i]->ends_before(position_us); });
}

int64_t Playback::next_due_us() const
{
    const auto guard = hold();
    int64_t next_us = INT64_MAX;
    for (const size_t i : shown_) {
        if (!tracks_[i]->at_end()) next_us = std::min(next_us, tracks_[i]->next().due_us);
    }
    return next_us;
}

void Playback::set_speed(double speed)
{
    const auto guard = hold();
    if (speed_ == speed) return;
    const bool had_gaps = key_frames_only();
    if (!frozen_.owns_lock()) anchor(position_at(Clock::now()));
    speed_ = speed;
    /* Pictures refer to those before them, so deliver all again from the last key frame on. */
    if (had_gaps && !key_frames_only()) position_tracks();
    orders_ = true;
    wake_.notify();
}

void Playback::listen_to(int track)
{
    const auto guard = hold();
    heard_ = track;
}

int64_t Playback::position_us() const
{
    if (frozen_.owns_lock()) return anchor_us_; /* no time passes */
    const auto guard = hold();
    return position_at(Clock::now());
}

StreamFacts Playback::facts_of(size_t track) const
{
    const auto guard = hold();
    return tracks_[track]->facts();
}

uint64_t Playback::sent() const
{
    const auto guard = hold();
    uint64_t sent = 0;
    for (const auto &track : tracks_)
        sent += track->sent();
    return sent;
}

int64_t Playback::position_at(Clock::time_point now) const
{
    if (paused_ || ended_ || waits_for_decoders_) return anchor_us_;
    const auto passed = std::chrono::duration<double, std::micro>(now - anchor_at_).count();
    return anchor_us_ + static_cast<int64_t>(passed * speed_);
}

/* Set the position, which runs on from here. */
void Playback::anchor(int64_t position_us)
{
    anchor_us_ = position_us;
    anchor_at_ = Clock::now();
}

/* Every shown file from the key frame before the position on. */
void Playback::position_tracks()
{
    for (const size_t i : shown_)
        tracks_[i]->seek(anchor_us_);
    catch_up();
}

} // namespace nvrec
