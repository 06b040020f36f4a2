/* player_pages.cpp - see player.h: more files than the screen has players come as pages. */
#include <algorithm>

#include "play/player.h"

namespace nvrec
{
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

/* The place at which playback begins, and begins again. */
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

void Player::at_end_of_page()
{
    const int next = page_after(page_);
    /* Pages of one time of day are of other cameras, and not of what comes next. */
    const bool same_page = next == page_ || plan_.has_base;
    if (options_.loop && same_page) {
        playback_.seek(0);
    } else if (!same_page && (next > page_ || options_.loop)) {
        playback_.freeze();
        playback_.set_position(0);
        change_page(next);
    } else if (!wall_->cameras().empty()) {
        live();
    } else {
        done_ = true;
    }
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
