/* player_end.cpp - the end of the program, and what is judged then; see player_self.h. */
#include "scenario/player_self.h"

#include <thread>

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

constexpr auto kEndPoll = 5ms;
constexpr auto kSettleAtEnd_ms = 200; // for a program that ends: it may not come to rest any more

} // namespace

void Player::finish()
{
    if (!journal_.end && !outcome_.interrupted) {
        Moment last(board_, journal_, now_us_, state_);
        judge_rest(last, false);
        end_program();
    }
    session_.stop();
    take_last_words();
    Moment after(board_, journal_, now_us_, json());
    judge_rest(after, true);
    for (Judgement &one : judgements_) {
        if (one.decided()) continue;
        one.give_up(outcome_.interrupted ? "it was interrupted"
                                         : "it was not looked at: the run ended before");
        note(one, nullptr);
    }
    if (journal_.end && !journal_.end->status && !expects_end_ && journal_.end->signal != 15 &&
        !outcome_.interrupted && outcome_.failures.empty())
        fail(0, {}, "the program " + journal_.end->text());
    outcome_.board_us = now_us_;
    outcome_.log = journal_.log;
}

void Player::judge_rest(Moment &moment, bool ended)
{
    for (Judgement &one : judgements_) {
        if (one.decided()) continue;
        one.look_at_end(moment, ended);
        note(one, ended ? nullptr : &moment);
    }
}

/* It is asked to, and the clock goes on until it has. */
void Player::end_program()
{
    session_.send_signal(15);
    const auto deadline = Steady::now() + orders_.end_patience;
    while (Steady::now() < deadline) {
        if (auto end = session_.ended()) {
            end->at_us = now_us_;
            journal_.end = end;
            return;
        }
        if (scenario_.board.stepped)
            step_towards_end();
        else
            std::this_thread::sleep_for(kEndPoll);
    }
    ProgramEnd end;
    end.at_us = now_us_;
    end.signal = 9;
    end.killed = true;
    journal_.end = end;
    fail(0, {},
         "the program did not end within " + std::to_string(orders_.end_patience.count() / 1000) +
             " s after it was asked to (SIGTERM), and was killed");
}

void Player::step_towards_end()
{
    try {
        board_.request("wait.quiet", {{"timeout", kSettleAtEnd_ms}});
    } catch (const RequestError &) {
    }
    try {
        board_.request("clock.step", {{"by", scenario_.board.step_us}});
        now_us_ += scenario_.board.step_us;
    } catch (const RequestError &) {
        std::this_thread::sleep_for(kEndPoll);
    }
}

void Player::take_last_words()
{
    for (std::string &line : session_.take_log())
        journal_.log.push_back({now_us_, std::move(line)});
}

} // namespace vboard_app::scenario
