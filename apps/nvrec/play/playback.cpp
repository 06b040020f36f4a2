/* playback.cpp - see playback.h. */
#include "play/playback.h"

#include <algorithm>

namespace nvrec
{
namespace
{

constexpr double kDoubleSpeed = 2.0;
/* A player that falls further behind than this plays on from where it is. */
constexpr int64_t kLatest_us = 500'000;
/* How often the last pictures' decoders are waited for: a wait ends at once when there is nothing left. */
constexpr int kLastTries = 5;

} // namespace

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

size_t Playback::open()
{
    size_t opened = 0;
    for (const auto &track : tracks_)
        opened += track->open();
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
    /* Pictures refer to those before them: all of them again from the last key frame on. */
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
    if (paused_ || ended_) return anchor_us_;
    const auto passed = std::chrono::duration<double, std::micro>(now - anchor_at_).count();
    return anchor_us_ + static_cast<int64_t>(passed * speed_);
}

/* The position is this now, and runs on from here. */
void Playback::anchor(int64_t position_us)
{
    anchor_us_ = position_us;
    anchor_at_ = Clock::now();
}

bool Playback::key_frames_only() const
{
    return speed_ > kDoubleSpeed;
}

/* Every shown file from the key frame before the position on. */
void Playback::position_tracks()
{
    for (const size_t i : shown_)
        tracks_[i]->seek(anchor_us_);
    catch_up();
}

/* The shown file whose picture is due first, up to a place; null = there is none. */
PlaybackTrack *Playback::next_track(int64_t until_us)
{
    PlaybackTrack *first = nullptr;
    for (const size_t i : shown_) {
        PlaybackTrack &track = *tracks_[i];
        if (track.at_end() || track.next().due_us > until_us) continue;
        if (!first || track.next().due_us < first->next().due_us) first = &track;
    }
    return first;
}

/* Deliver what lies before the position at once, and see it on the screen. No time passes meanwhile. */
void Playback::catch_up()
{
    while (PlaybackTrack *track = next_track(anchor_us_)) {
        track->wait_for_decoder(); /* as fast as it decodes, and no faster: its buffer is small */
        deliver(*track, false);
    }
    /* Nothing follows in a paused recording that would bring the last pictures out. */
    if (paused_) push_out();
    wait_for_decoders();
    darken(anchor_us_);
    anchor(anchor_us_);
    ended_ = false;
    orders_ = true;
}

void Playback::push_out()
{
    for (const size_t i : shown_)
        tracks_[i]->push_out(speed_ >= kDoubleSpeed);
}

/* When a gap has to be seen next. */
int64_t Playback::dark_from_us() const
{
    int64_t first_us = INT64_MAX;
    for (const size_t i : shown_)
        first_us = std::min(first_us, tracks_[i]->dark_from_us());
    return first_us;
}

/* A gap is seen as one: where nothing was recorded no picture stands. */
void Playback::darken(int64_t position_us)
{
    for (const size_t i : shown_) {
        if (tracks_[i]->dark_from_us() > position_us) continue;
        tracks_[i]->flush();
        tracks_[i]->note_dark();
    }
}

void Playback::wait_for_decoders() const
{
    for (const size_t i : shown_)
        tracks_[i]->wait_for_decoder();
}

void Playback::run()
{
    std::unique_lock guard(lock_);
    auto changed = [this] { return quit_ || orders_; };
    while (!quit_) {
        orders_ = false;
        PlaybackTrack *track = next_track(INT64_MAX);
        if (!track && !shown_.empty() && !ended_) end();
        if (!track || paused_) {
            wake_.wait(guard, changed);
            continue;
        }
        const int64_t now_us = position_at(Clock::now());
        darken(now_us);
        const int64_t until_us = std::min(track->next().due_us, dark_from_us());
        const int64_t wait_us = until_us - now_us;
        if (wait_us < -kLatest_us) anchor(track->next().due_us);
        const auto wait = std::chrono::duration<double, std::micro>(static_cast<double>(wait_us) / speed_);
        if (wait_us > 0 &&
            wake_.wait_until(guard, Clock::now() + std::chrono::duration_cast<Clock::duration>(wait),
                             changed))
            continue;
        if (until_us < track->next().due_us) continue; /* a gap begins */
        deliver(*track, true);
    }
}

void Playback::deliver(PlaybackTrack &track, bool with_sound)
{
    const int64_t due_us = track.next().due_us;
    const bool heard = heard_ >= 0 && tracks_[static_cast<size_t>(heard_)].get() == &track;
    if (heard && with_sound && speed_ == 1.0)
        track.deliver_sound(due_us);
    else
        track.drop_sound(due_us);
    track.deliver(speed_ >= kDoubleSpeed);
    if (!key_frames_only()) return;
    track.push_out(true); /* the next one comes much later */
    track.skip_to_key();
}

/* All shown files are through: their last pictures are to be seen before anyone acts on it. */
void Playback::end()
{
    push_out();
    /* On a PC that is slower than the recording much may be left to decode. */
    for (int tries = 0; tries < kLastTries; ++tries)
        wait_for_decoders();
    anchor(position_at(Clock::now()));
    ended_ = true;
    if (changed_) changed_();
}

} // namespace nvrec
