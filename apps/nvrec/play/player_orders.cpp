/* player_orders.cpp - see player.h: the orders of keys, mouse and scripts. */
#include <algorithm>
#include <iterator>
#include <utility>

#include "console/exit_code.h"
#include "console/terminal.h"
#include "console/text.h"
#include "play/player.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr double kSpeeds[] = {1, 2, 4};

int64_t microseconds(double seconds)
{
    return static_cast<int64_t>(seconds * 1e6);
}

} // namespace

bool Player::is_speed(double times)
{
    return std::find(std::begin(kSpeeds), std::end(kSpeeds), times) != std::end(kSpeeds);
}

void Player::pause(bool paused)
{
    if (!playing_) return;
    stands_at_end_ = false;
    playback_.pause(paused);
}

void Player::seek(double position_s)
{
    if (!playing_) return;
    const int64_t before_us = playback_.position_us();
    if (position_s > 0 && playback_.ends_before(microseconds(position_s))) {
        fail(kExitUsage, text("seek %g: the recordings end before that", position_s));
        playback_.seek_exactly(before_us);
        return;
    }
    playback_.seek(microseconds(position_s));
    if (std::exchange(stands_at_end_, false)) playback_.pause(false);
}

void Player::go_to(int64_t position_us)
{
    if (!playing_) return;
    const int64_t last_us = last_place_us();
    const bool behind = position_us >= last_us;
    if (behind && !playback_.paused()) {
        playback_.pause(true);
        stands_at_end_ = true;
    }
    playback_.seek_exactly(std::min(position_us, last_us));
    if (!behind && std::exchange(stands_at_end_, false)) playback_.pause(false);
}

void Player::skip(double by_s)
{
    if (!playing_) return;
    const int64_t position_us = playback_.position_us() + microseconds(by_s);
    if (plan_.has_base)
        go_to(position_us);
    else
        playback_.seek(position_us);
}

void Player::set_speed(double speed)
{
    if (playing_) playback_.set_speed(speed);
}

void Player::enlarge(int file)
{
    if (!playing_ || file >= static_cast<int>(plan_.tracks.size())) return;
    if (file >= 0) turn_to_page(file / Playback::kPlayers);
    wall_->enlarge(file < 0 ? -1 : file % Playback::kPlayers);
}

void Player::turn_to_page(int page)
{
    if (!playing_ || page < 0 || page >= pages() || page == page_ || tracks_of(page).empty()) return;
    change_page(page);
}

void Player::hear(int file)
{
    if (playing_ && file < static_cast<int>(plan_.tracks.size())) playback_.listen_to(file);
}

void Player::end()
{
    wall_->end(kExitDone);
}

void Player::fail(int exit_code, const std::string &line)
{
    if (!line.empty()) wall_->terminal().error(line);
    if (exit_code_ == kExitDone) exit_code_ = exit_code;
}

bool Player::on_key(Key key)
{
    if (key == Key::kPlay) {
        play();
        return true;
    }
    if (!playing_) return false;
    switch (key) {
    case Key::kPause: pause(!playback_.paused()); return true;
    case Key::kStop: live(); return true;
    case Key::kFaster: {
        const auto *next = std::upper_bound(std::begin(kSpeeds), std::end(kSpeeds), playback_.speed());
        set_speed(next == std::end(kSpeeds) ? kSpeeds[0] : *next);
        return true;
    }
    case Key::kLeft: skip(-static_cast<double>(key_step_us_) / 1e6); return true;
    case Key::kRight: skip(static_cast<double>(key_step_us_) / 1e6); return true;
    case Key::kPrevious: seek(0); return true;
    case Key::kNext: turn_to_page(page_after(page_)); return true;
    case Key::kEnter: wall_->enlarge(wall_->enlarged() < 0 ? wall_->selected() : -1); return true;
    case Key::kBack:
        if (wall_->enlarged() < 0) return false;
        wall_->enlarge(-1);
        return true;
    default: return false;
    }
}

bool Player::on_pointer(const PointerEvent &event)
{
    if (!playing_ || (event.pressed & 1) == 0) return false;
    const int channel = channel_at(wall_->session().panes(), event.x, event.y);
    if (clicks_.is_second(channel, Clock::now()))
        wall_->enlarge(wall_->enlarged() < 0 ? channel : -1);
    else if (channel >= 0)
        wall_->select(channel);
    return channel >= 0;
}

} // namespace nvrec
