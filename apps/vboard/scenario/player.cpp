/* player.cpp - the course of a scenario; see player.h. */
#include "scenario/player_self.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace vboard_app::scenario
{
namespace
{

using Steady = std::chrono::steady_clock;

void write_log(Outcome &outcome, const std::string &folder)
{
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string path = (std::filesystem::path(folder) / "program.log").string();
    std::ofstream file(path);
    for (const LogLine &line : outcome.log)
        file << time_text(line.at_us) << "  " << line.text << "\n";
    file.close();
    if (file) outcome.log_file = path;
}

} // namespace

Player::Player(Scenario &scenario, Session &session, const PlayOrders &orders, Outcome &outcome)
    : scenario_(scenario), session_(session), board_(session.board()), orders_(orders), outcome_(outcome),
      began_(Steady::now())
{
    for (const Expectation &one : scenario.expectations)
        judgements_.emplace_back(one);
    for (const Expectation &one : scenario.expectations)
        expects_end_ |= one.check->expects_end();
}

void Player::run()
{
    try {
        take_time();
        while (!look_and_act())
            advance();
    } catch (const Broken &broken) {
        fail(0, {}, broken.what());
    }
    finish();
}

/* True: all is done. */
bool Player::look_and_act()
{
    for (;;) {
        check_limits();
        settle();
        take_time();
        take_news();
        Moment moment(board_, journal_, now_us_, state_);
        judge(moment);
        if (journal_.end) {
            if (!expects_end_) fail(0, {}, "the program " + journal_.end->text());
            give_up_steps("the program " + journal_.end->text());
            return true;
        }
        if (take_step(moment)) continue;
        return over();
    }
}

void Player::check_limits()
{
    if (orders_.interrupted != nullptr && *orders_.interrupted) {
        outcome_.interrupted = true;
        throw Broken("it was interrupted");
    }
    if (Steady::now() - began_ > orders_.limit)
        throw Broken("it did not come to its end within " + std::to_string(orders_.limit.count()) +
                     " s of real time");
}

bool Player::over() const
{
    if (next_step_ < scenario_.steps.size()) return false;
    for (const Judgement &one : judgements_)
        if (!one.decided() && one.has_own_time()) return false;
    return now_us_ >= scenario_.lasts_us.value_or(0);
}

void Player::take_news()
{
    take_log_and_calls();
    if (journal_.end) return;
    if (auto end = session_.ended()) {
        end->at_us = now_us_;
        journal_.end = end;
        take_log_and_calls(); // its last ones
    }
}

void Player::take_log_and_calls()
{
    for (std::string &line : session_.take_log())
        journal_.log.push_back({now_us_, std::move(line)});
    if (!scenario_.needs_calls) return;
    for (Call &call : session_.take_calls(journal_.calls_lost)) {
        call.at_us = std::clamp<int64_t>(call.at_us - board_at_0_us_, 0, now_us_);
        journal_.calls.push_back(std::move(call));
    }
}

void Player::judge(Moment &moment)
{
    for (Judgement &one : judgements_) {
        if (one.decided()) continue;
        one.look(moment);
        note(one, &moment);
    }
}

void Player::note(const Judgement &one, Moment *moment)
{
    if (!one.decided()) return;
    ++outcome_.judged;
    if (one.passed()) return;
    const Expectation &expectation = one.expectation();
    Failure &failure = fail(expectation.line, expectation.text, one.seen());
    if (moment != nullptr) failure.picture = evidence_of(expectation, *moment);
}

/* The picture that shows it; where the check has none, what the screen shows. */
std::string Player::evidence_of(const Expectation &expectation, Moment &moment)
{
    const std::string path = output_path("line-" + std::to_string(expectation.line));
    std::string file = expectation.check->write_evidence(path);
    if (!file.empty()) return file;
    if (moment.state() == nullptr) return {};
    const Image *screen = moment.screen();
    if (screen == nullptr || screen->rgb.empty()) return {};
    return write_png(path + ".png", *screen) ? path + ".png" : std::string();
}

std::string Player::output_path(const std::string &name)
{
    std::error_code ignored; // what cannot be written is not told as written
    std::filesystem::create_directories(orders_.output_folder, ignored);
    return (std::filesystem::path(orders_.output_folder) / name).string();
}

Failure &Player::fail(int line, const std::string &expected, const std::string &seen)
{
    outcome_.failures.push_back({line, expected, seen, now_us_, {}});
    return outcome_.failures.back();
}

Outcome play(Scenario &scenario, const Launcher &launch, const PlayOrders &orders)
{
    Outcome outcome;
    const auto began = Steady::now();
    const std::unique_ptr<Session> session = launch(scenario);
    {
        Player player(scenario, *session, orders, outcome);
        player.run();
    }
    outcome.real_s = std::chrono::duration<double>(Steady::now() - began).count();
    std::stable_sort(outcome.failures.begin(), outcome.failures.end(),
                     [](const Failure &one, const Failure &other) { return one.at_us < other.at_us; });
    if (!outcome.passed()) write_log(outcome, orders.output_folder);
    return outcome;
}

} // namespace vboard_app::scenario
