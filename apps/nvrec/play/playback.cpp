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

} // namespace

Playback::Playback(const std::vector<std::string> &files)
{
    for (size_t i = 0; i < files.size(); ++i)
        lanes_.push_back(std::make_unique<PlaybackLane>(files[i], static_cast<int>(i) % kPlayers));
}

Playback::~Playback()
{
    stop();
}

size_t Playback::open()
{
    size_t opened = 0;
    for (const auto &lane : lanes_)
        opened += lane->open();
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

void Playback::thaw(const std::vector<size_t> &lanes)
{
    if (!frozen_.owns_lock()) return;
    shown_ = lanes;
    place_lanes();
    frozen_.unlock();
    wake_.notify();
}

void Playback::pause(bool paused)
{
    const auto guard = hold();
    if (paused_ == paused) return;
    anchor(position_at(Clock::now()));
    paused_ = paused;
    if (paused) wait_for_decoders(); /* what is on the screen now stays there */
    orders_ = true;
    wake_.notify();
}

int64_t Playback::seek(int64_t place_us)
{
    const auto guard = hold();
    for (const size_t i : shown_)
        lanes_[i]->flush();
    int64_t reached_us = INT64_MIN;
    for (const size_t i : shown_) {
        if (lanes_[i]->seek(std::max<int64_t>(0, place_us)))
            reached_us = std::max(reached_us, lanes_[i]->next().due_us);
    }
    anchor(reached_us == INT64_MIN ? 0 : reached_us);
    catch_up();
    wake_.notify();
    return anchor_us_;
}

void Playback::set_speed(double speed)
{
    const auto guard = hold();
    if (speed_ == speed) return;
    const bool had_gaps = key_frames_only();
    anchor(position_at(Clock::now()));
    speed_ = speed;
    /* Pictures refer to those before them: all of them again from the last key frame on. */
    if (had_gaps && !key_frames_only()) place_lanes();
    orders_ = true;
    wake_.notify();
}

void Playback::listen_to(int lane)
{
    const auto guard = hold();
    heard_ = lane;
}

int64_t Playback::position_us() const
{
    if (frozen_.owns_lock()) return anchor_us_; /* no time passes */
    const auto guard = hold();
    return position_at(Clock::now());
}

StreamFacts Playback::facts_of(size_t lane) const
{
    const auto guard = hold();
    return lanes_[lane]->facts();
}

uint64_t Playback::sent() const
{
    const auto guard = hold();
    uint64_t sent = 0;
    for (const auto &lane : lanes_)
        sent += lane->sent();
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
void Playback::place_lanes()
{
    for (const size_t i : shown_)
        lanes_[i]->seek(anchor_us_);
    catch_up();
}

/* The shown file whose picture is due first, up to a place; null = there is none. */
PlaybackLane *Playback::next_lane(int64_t until_us)
{
    PlaybackLane *first = nullptr;
    for (const size_t i : shown_) {
        PlaybackLane &lane = *lanes_[i];
        if (lane.at_end() || lane.next().due_us > until_us) continue;
        if (!first || lane.next().due_us < first->next().due_us) first = &lane;
    }
    return first;
}

/* Deliver what lies before the position at once, and see it on the screen. No time passes meanwhile. */
void Playback::catch_up()
{
    while (PlaybackLane *lane = next_lane(anchor_us_)) {
        lane->wait_for_decoder(); /* as fast as it decodes, and no faster: its buffer is small */
        deliver(*lane, false);
    }
    wait_for_decoders();
    anchor(anchor_us_);
    ended_ = false;
    orders_ = true;
}

void Playback::wait_for_decoders() const
{
    for (const size_t i : shown_)
        lanes_[i]->wait_for_decoder();
}

void Playback::run()
{
    std::unique_lock guard(lock_);
    auto changed = [this] { return quit_ || orders_; };
    while (!quit_) {
        orders_ = false;
        PlaybackLane *lane = next_lane(INT64_MAX);
        if (!lane && !shown_.empty() && !ended_) end();
        if (!lane || paused_) {
            wake_.wait(guard, changed);
            continue;
        }
        const int64_t wait_us = lane->next().due_us - position_at(Clock::now());
        if (wait_us < -kLatest_us) anchor(lane->next().due_us);
        const auto wait = std::chrono::duration<double, std::micro>(static_cast<double>(wait_us) / speed_);
        if (wait_us > 0 &&
            wake_.wait_until(guard, Clock::now() + std::chrono::duration_cast<Clock::duration>(wait),
                             changed))
            continue;
        deliver(*lane, true);
    }
}

void Playback::deliver(PlaybackLane &lane, bool with_sound)
{
    const int64_t due_us = lane.next().due_us;
    const bool heard = heard_ >= 0 && lanes_[static_cast<size_t>(heard_)].get() == &lane;
    if (heard && with_sound && speed_ == 1.0)
        lane.deliver_sound(due_us);
    else
        lane.drop_sound(due_us);
    lane.deliver(speed_ >= kDoubleSpeed);
    if (key_frames_only()) lane.skip_to_key();
}

/* All shown files are through: their last pictures are to be seen before anyone acts on it. */
void Playback::end()
{
    wait_for_decoders();
    anchor(position_at(Clock::now()));
    ended_ = true;
    if (changed_) changed_();
}

} // namespace nvrec
