/* playback_run.cpp - see playback.h: what is delivered, and when. */
#include <algorithm>

#include "play/playback.h"

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

bool Playback::key_frames_only() const
{
    return speed_ > kDoubleSpeed;
}

/* The shown file whose picture is due first, if that is due by a place; null = there is none. */
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

/*
 * Deliver all pictures before the position at once, and wait until they are on the screen. The position
 * stands still meanwhile.
 */
void Playback::catch_up()
{
    waits_for_decoders_ = false;
    ended_ = false;
    orders_ = true;
    while (PlaybackTrack *track = next_track(anchor_us_)) {
        if (!track->decoder_fits()) return ask_for_decoders();
        track->wait_for_decoder(); /* as fast as it decodes, and no faster: its buffer is small */
        deliver(*track, false);
    }
    /* No picture follows in a paused recording, so the decoder would not give the last ones out. */
    if (paused_) push_out();
    wait_for_decoders();
    darken(anchor_us_);
    anchor(anchor_us_);
}

/* The position stays until thaw(), which sees the decoders made anew. */
void Playback::ask_for_decoders()
{
    waits_for_decoders_ = true;
    if (changed_) changed_();
}

void Playback::push_out()
{
    for (const size_t i : shown_)
        tracks_[i]->push_out(speed_ >= kDoubleSpeed);
}

/* When the next gap has to be shown. */
int64_t Playback::dark_from_us() const
{
    int64_t first_us = INT64_MAX;
    for (const size_t i : shown_)
        first_us = std::min(first_us, tracks_[i]->dark_from_us());
    return first_us;
}

/* Show a gap as a gap: while nothing was recorded, no picture stays on the screen. */
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
        if (!track && !shown_.empty() && !ended_ && !paused_) end();
        if (!track || paused_ || waits_for_decoders_) {
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
        if (!track->decoder_fits()) {
            anchor(track->next().due_us);
            ask_for_decoders();
            continue;
        }
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

/* All shown files have ended: wait until their last pictures are on the screen before this is reported. */
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
