/* player_time.cpp - the board's clock and its power, as a player follows them; see player_self.h. */
#include "scenario/player_self.h"

#include <algorithm>
#include <thread>

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

constexpr int64_t kLookPeriod_us = 20'000; // in real time
constexpr auto kRebootPatience = 20s;
constexpr auto kRebootPoll = 5ms;

} // namespace

/* Stepped: until nothing happens any more without the clock. */
void Player::settle()
{
    if (!scenario_.board.stepped || !powered_) return;
    try {
        board_.request("wait.quiet", {{"timeout", orders_.quiet_patience.count()}});
    } catch (const RequestError &error) {
        if (error.code == "timed_out")
            throw Broken("the program does not come to rest at " + time_text(now_us_) +
                         ": it waits on something else than the board; play it with \"clock: realtime\"");
        wait_for_power();
    }
}

/* The state, and the time where the clock runs by itself. After another boot the board's clock is new. */
void Player::take_time()
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        state_ = json();
        if (!powered_ && !power_is_back()) break;
        try {
            state_ = board_.request("state", json::object());
        } catch (const RequestError &) {
            if (!wait_for_power()) break;
            continue;
        }
        note_boot();
        if (!has_expired()) break;
        wait_for_power(); // the board is about to be started again
    }
    if (state_.is_null()) {
        if (!scenario_.board.stepped) now_us_ = std::max(now_us_, elapsed_us());
        return;
    }
    const json &clock = state_.at("clock");
    const int64_t wall_us = clock.at("wall_us").get<int64_t>();
    if (!wall_at_0_us_ || wall_is_new_) {
        wall_at_0_us_ = wall_us - (scenario_.board.stepped || !wall_at_0_us_ ? now_us_ : elapsed_us());
        wall_is_new_ = false;
    }
    now_us_ = std::max(now_us_, wall_us - *wall_at_0_us_);
    board_at_0_us_ = clock.at("us").get<int64_t>() - now_us_;
}

bool Player::has_expired() const
{
    const json expired = state_.value("watchdog", json::object()).value("expired", json(false));
    return expired.is_boolean() ? expired.get<bool>() : expired.is_number() && expired.get<int>() != 0;
}

int64_t Player::elapsed_us() const
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Steady::now() - began_).count();
}

void Player::advance()
{
    const int64_t next = std::max<int64_t>(1, next_due_us() - now_us_);
    if (!scenario_.board.stepped) {
        std::this_thread::sleep_for(std::chrono::microseconds(std::min(next, kLookPeriod_us)));
        return;
    }
    const int64_t step = std::min(next, scenario_.board.step_us);
    if (powered_) {
        try {
            board_.request("clock.step", {{"by", step}});
        } catch (const RequestError &error) {
            if (!wait_for_power()) throw Broken(std::string("the clock cannot be stepped: ") + error.what());
            return;
        }
    }
    now_us_ += step;
}

int64_t Player::next_due_us() const
{
    int64_t next = now_us_ + 10'000'000;
    const auto consider = [&](std::optional<int64_t> time) {
        if (time && *time > now_us_) next = std::min(next, *time);
    };
    for (const Judgement &one : judgements_)
        consider(one.next_us(now_us_));
    for (size_t i = next_step_; i < scenario_.steps.size(); ++i)
        consider(scenario_.steps[i].when.at_us);
    if (step_due_us_) consider(step_due_us_);
    if (waiting_) consider(waiting_->deadline_us());
    consider(scenario_.lasts_us);
    return next;
}

bool Player::power_is_back()
{
    try {
        const json board = board_.request("board", json::object());
        powered_ = board.value("power", "on") == "on";
    } catch (const RequestError &) {
    }
    return powered_;
}

/* The program may be on its way to another start. False: it has ended, or the power is off. */
bool Player::wait_for_power()
{
    const auto deadline = Steady::now() + kRebootPatience;
    while (Steady::now() < deadline && !session_.ended()) {
        const json board = board_.request("board", json::object());
        if (board.value("power", "on") == "off") {
            powered_ = false;
            return false;
        }
        if (board.value("starts", 1) > journal_.starts) return true;
        std::this_thread::sleep_for(kRebootPoll);
    }
    return false;
}

void Player::note_boot()
{
    const json board = board_.request("board", json::object());
    const int starts = board.value("starts", 1);
    if (starts == journal_.starts && wall_at_0_us_) return;
    wall_is_new_ = starts != journal_.starts;
    journal_.boot_reason = board.value("boot_reason", "power");
    if (starts != journal_.starts && journal_.boot_reason == "watchdog") journal_.expired_at_us = now_us_;
    journal_.starts = starts;
}

} // namespace vboard_app::scenario
