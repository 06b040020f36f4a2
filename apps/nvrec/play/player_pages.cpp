/* player_pages.cpp - see player.h: pages, for more files than can play at once. */
#include <algorithm>

#include "play/player.h"

namespace nvrec
{
namespace
{

/* Cameras that were recorded together end within this time of each other. */
constexpr int64_t kWorthTurning_us = 2'000'000;

} // namespace

int Player::pages_of(int files)
{
    return (files + Playback::kPlayers - 1) / Playback::kPlayers;
}

int Player::pages() const
{
    return pages_of(static_cast<int>(plan_.tracks.size()));
}

std::vector<size_t> Player::tracks_of(int page) const
{
    const auto first = static_cast<size_t>(page) * Playback::kPlayers;
    const size_t end = std::min(first + Playback::kPlayers, playback_.tracks().size());
    std::vector<size_t> tracks;
    for (size_t i = first; i < end; ++i) {
        if (playback_.tracks()[i]->opened()) tracks.push_back(i);
    }
    return tracks;
}

/* The next page with a file that could be opened; after the last one, the first. */
int Player::page_after(int page) const
{
    do {
        page = (page + 1) % pages();
    } while (tracks_of(page).empty());
    return page;
}

/* The place at which playback begins, also when it is repeated. */
int64_t Player::begin_us() const
{
    if (options_.at_us == 0 || !plan_.has_base) return 0;
    return std::max<int64_t>(0, options_.at_us - plan_.base_us);
}

/* Where the recordings of the page end; INT64_MAX = that is not known. */
int64_t Player::last_place_us() const
{
    int64_t last_us = INT64_MIN;
    for (const size_t i : tracks_of_page()) {
        for (const TimeSpan &span : plan_.recorded[i])
            last_us = std::max(last_us, span.to_us);
    }
    return last_us == INT64_MIN ? INT64_MAX : last_us;
}

/*
 * The place itself if the page has recordings there, else where they go on after it; INT64_MAX = they do not.
 */
int64_t Player::next_recorded_us(int page, int64_t position_us) const
{
    int64_t next_us = INT64_MAX;
    for (const size_t i : tracks_of(page)) {
        for (const TimeSpan &span : plan_.recorded[i]) {
            if (span.to_us > position_us) next_us = std::min(next_us, std::max(span.from_us, position_us));
        }
    }
    return next_us;
}

/*
 * The page whose recordings go on first; of several, the first one counted from a given page; -1 = none go
 * on.
 */
int Player::page_that_goes_on(int64_t position_us, int first) const
{
    int found = -1;
    int64_t soonest_us = INT64_MAX;
    for (int i = 0; i < pages(); ++i) {
        const int page = (first + i) % pages();
        /* The page ended before that place, whatever the index tells of it. */
        if (over_us_[static_cast<size_t>(page)] <= position_us) continue;
        const int64_t next_us = next_recorded_us(page, position_us);
        if (next_us >= soonest_us) continue;
        soonest_us = next_us;
        found = page;
    }
    return found;
}

void Player::at_end_of_page()
{
    if (plan_.has_base ? follow_time() : follow_pages()) return;
    if (!wall_->cameras().empty())
        live();
    else
        done_ = true;
}

/* The next page from its beginning. False: there is none. */
bool Player::follow_pages()
{
    const int next = page_after(page_);
    if (next <= page_ && !options_.loop) return false;
    if (next == page_) {
        playback_.seek(0);
        return true;
    }
    playback_.freeze();
    playback_.set_position(0);
    change_page(next);
    return true;
}

/*
 * The pages are different cameras at the same time of day: choose the page that has recordings at this time,
 * or the next after it. That may be the same page, when one of its pictures was alone on the screen and the
 * others go on.
 */
bool Player::follow_time()
{
    const int64_t position_us = playback_.position_us();
    if (wall_->enlarged() < 0) over_us_[static_cast<size_t>(page_)] = position_us;
    int next = page_that_goes_on(position_us + kWorthTurning_us, (page_ + 1) % pages());
    if (next < 0) {
        if (!options_.loop || playback_.sent() == sent_at_loop_) return false;
        sent_at_loop_ = playback_.sent();
        over_us_.assign(over_us_.size(), INT64_MAX);
        next = std::max(0, page_that_goes_on(begin_us(), 0));
        if (next == page_) {
            playback_.seek_exactly(begin_us());
            return true;
        }
        playback_.freeze();
        playback_.set_position(begin_us());
    }
    change_page(next);
    return true;
}

void Player::change_page(int page)
{
    playback_.freeze();
    count_to_here();
    page_ = page;
    count_from_here();
    show_files();
}

} // namespace nvrec
