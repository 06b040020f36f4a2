/* player.cpp - see player.h. */
#include "scenario/player.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "scenario/timeline.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

constexpr int64_t kLookPeriod_us = 20'000; // in real time
constexpr auto kRebootPatience = 20s;
constexpr auto kEndPoll = 5ms;
constexpr auto kSettleAtEnd_ms = 200; // for a program that ends: it may not come to rest any more

/* The run cannot go on. */
class Broken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Player
{
public:
    Player(Scenario &scenario, Session &session, const PlayOrders &orders, Outcome &outcome)
        : scenario_(scenario), session_(session), board_(session.board()), orders_(orders), outcome_(outcome),
          began_(Steady::now())
    {
        for (const Expectation &one : scenario.expectations)
            judgements_.emplace_back(one);
        for (const Expectation &one : scenario.expectations)
            expects_end_ |= one.check->expects_end();
    }

    void run()
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

private:
    /* --- the course of it --- */

    /* True: all is done. */
    bool look_and_act()
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

    void check_limits()
    {
        if (orders_.interrupted != nullptr && *orders_.interrupted) {
            outcome_.interrupted = true;
            throw Broken("it was interrupted");
        }
        if (Steady::now() - began_ > orders_.limit)
            throw Broken("it did not come to its end within " + std::to_string(orders_.limit.count()) +
                         " s of real time");
    }

    bool over() const
    {
        if (next_step_ < scenario_.steps.size()) return false;
        for (const Judgement &one : judgements_)
            if (!one.decided() && one.has_own_time()) return false;
        return now_us_ >= scenario_.lasts_us.value_or(0);
    }

    /* --- time --- */

    /* Stepped: until nothing happens any more without the clock. */
    void settle()
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
    void take_time()
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

    bool has_expired() const
    {
        const json expired = state_.value("watchdog", json::object()).value("expired", json(false));
        return expired.is_boolean() ? expired.get<bool>() : expired.is_number() && expired.get<int>() != 0;
    }

    int64_t elapsed_us() const
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(Steady::now() - began_).count();
    }

    void advance()
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
                if (!wait_for_power())
                    throw Broken(std::string("the clock cannot be stepped: ") + error.what());
                return;
            }
        }
        now_us_ += step;
    }

    int64_t next_due_us() const
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

    /* --- the board's power --- */

    bool power_is_back()
    {
        try {
            const json board = board_.request("board", json::object());
            powered_ = board.value("power", "on") == "on";
        } catch (const RequestError &) {
        }
        return powered_;
    }

    /* The program may be on its way to another start. False: it has ended, or the power is off. */
    bool wait_for_power()
    {
        const auto deadline = Steady::now() + kRebootPatience;
        while (Steady::now() < deadline && !session_.ended()) {
            const json board = board_.request("board", json::object());
            if (board.value("power", "on") == "off") {
                powered_ = false;
                return false;
            }
            if (board.value("starts", 1) > journal_.starts) return true;
            std::this_thread::sleep_for(kEndPoll);
        }
        return false;
    }

    void note_boot()
    {
        const json board = board_.request("board", json::object());
        const int starts = board.value("starts", 1);
        if (starts == journal_.starts && wall_at_0_us_) return;
        wall_is_new_ = starts != journal_.starts;
        journal_.boot_reason = board.value("boot_reason", "power");
        if (starts != journal_.starts && journal_.boot_reason == "watchdog") journal_.expired_at_us = now_us_;
        journal_.starts = starts;
    }

    /* --- what has happened --- */

    void take_news()
    {
        take_log_and_calls();
        if (journal_.end) return;
        if (auto end = session_.ended()) {
            end->at_us = now_us_;
            journal_.end = end;
            take_log_and_calls(); // its last ones
        }
    }

    void take_log_and_calls()
    {
        for (std::string &line : session_.take_log())
            journal_.log.push_back({now_us_, std::move(line)});
        if (!scenario_.needs_calls) return;
        for (Call &call : session_.take_calls(journal_.calls_lost)) {
            call.at_us = std::clamp<int64_t>(call.at_us - board_at_0_us_, 0, now_us_);
            journal_.calls.push_back(std::move(call));
        }
    }

    void judge(Moment &moment)
    {
        for (Judgement &one : judgements_) {
            if (one.decided()) continue;
            one.look(moment);
            note(one, &moment);
        }
    }

    void note(const Judgement &one, Moment *moment)
    {
        if (!one.decided()) return;
        ++outcome_.judged;
        if (one.passed()) return;
        const Expectation &expectation = one.expectation();
        Failure &failure = fail(expectation.line, expectation.text, one.seen());
        if (moment != nullptr) failure.picture = evidence_of(expectation, *moment);
    }

    /* The picture that shows it; where the check has none, what the screen shows. */
    std::string evidence_of(const Expectation &expectation, Moment &moment)
    {
        const std::string path = output_path("line-" + std::to_string(expectation.line));
        const std::string file = expectation.check->write_evidence(path);
        if (!file.empty()) return file;
        if (moment.state() == nullptr) return {};
        const Image *screen = moment.screen();
        if (screen == nullptr || screen->rgb.empty()) return {};
        return write_png(path + ".png", *screen) ? path + ".png" : std::string();
    }

    std::string output_path(const std::string &name)
    {
        std::error_code ignored; // what cannot be written is not told as written
        std::filesystem::create_directories(orders_.output_folder, ignored);
        return (std::filesystem::path(orders_.output_folder) / name).string();
    }

    Failure &fail(int line, const std::string &expected, const std::string &seen)
    {
        outcome_.failures.push_back({line, expected, seen, now_us_, {}});
        return outcome_.failures.back();
    }

    /* --- what is done --- */

    /* The next step, if it is due. True: it was done. */
    bool take_step(Moment &moment)
    {
        // Steps with a time do not wait for a condition before them.
        for (size_t i = next_step_; i < scenario_.steps.size(); ++i) {
            const Step &step = scenario_.steps[i];
            if (done_.contains(i)) continue;
            if (step.when.at_us) {
                if (*step.when.at_us > now_us_) continue;
                carry_out(i);
                return true;
            }
            if (i != first_open()) continue; // what comes after something waits for the step before it
            if (!step.when.after || is_met(step, moment)) {
                carry_out(i);
                return true;
            }
        }
        return false;
    }

    size_t first_open() const
    {
        size_t first = next_step_;
        while (done_.contains(first))
            ++first;
        return first;
    }

    bool is_met(const Step &step, Moment &moment)
    {
        if (step_due_us_) return *step_due_us_ <= now_us_;
        if (!waiting_) waiting_.emplace(*step.when.after, last_step_us_);
        switch (waiting_->look(moment)) {
        case Waiting::Word::waits: return false;
        case Waiting::Word::too_late:
            fail(step.line, step.text,
                 "what it comes after did not come within " + time_text(*step.when.after->within_us) + ": " +
                     waiting_->seen());
            throw Broken("it was given up: a step could not be done");
        case Waiting::Word::met: step_due_us_ = waiting_->due_us(); break;
        }
        return *step_due_us_ <= now_us_;
    }

    void carry_out(size_t index)
    {
        const Step &step = scenario_.steps[index];
        if (step.signal)
            session_.send_signal(*step.signal);
        else if (!step.shot.empty())
            take_shot(step);
        else
            carry_out(step.line, step.request);
        if (!step.when.at_us) {
            waiting_.reset();
            step_due_us_.reset();
        }
        done_.insert(index);
        last_step_us_ = now_us_;
        next_step_ = first_open();
    }

    void carry_out(int line, const Request &request)
    {
        try {
            if (request.name == "clock.step" && scenario_.board.stepped)
                now_us_ += request.parameters.value("by", int64_t{0});
            board_.request(request.name, request.parameters);
            if (request.name == "power") powered_ = request.parameters.value("to", "on") != "off";
        } catch (const RequestError &error) {
            fail(line, request.name, error.what());
            throw Broken("it was given up: a step could not be done");
        }
    }

    void take_shot(const Step &step)
    {
        try {
            const std::string path = output_path(step.shot);
            if (write_png(path, image_of(board_.picture()))) return;
            fail(step.line, step.text, "cannot write " + path);
        } catch (const RequestError &error) {
            fail(step.line, step.text, error.what());
        }
        throw Broken("it was given up: a step could not be done");
    }

    void give_up_steps(const std::string &why)
    {
        const size_t open = first_open();
        if (open >= scenario_.steps.size()) return;
        fail(scenario_.steps[open].line, scenario_.steps[open].text, "it was not done: " + why);
        next_step_ = scenario_.steps.size();
    }

    /* --- the end --- */

    void finish()
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

    void judge_rest(Moment &moment, bool ended)
    {
        for (Judgement &one : judgements_) {
            if (one.decided()) continue;
            one.look_at_end(moment, ended);
            note(one, ended ? nullptr : &moment);
        }
    }

    /* It is asked to, and the clock goes on until it has. */
    void end_program()
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

    void step_towards_end()
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

    void take_last_words()
    {
        for (std::string &line : session_.take_log())
            journal_.log.push_back({now_us_, std::move(line)});
    }

    Scenario &scenario_;
    Session &session_;
    Board &board_;
    const PlayOrders &orders_;
    Outcome &outcome_;
    const Steady::time_point began_;
    Journal journal_;
    std::vector<Judgement> judgements_;
    bool expects_end_ = false;

    int64_t now_us_ = 0;
    json state_;
    std::optional<int64_t> wall_at_0_us_; // the wall clock when the program began
    bool wall_is_new_ = false;            // another boot has set it
    int64_t board_at_0_us_ = 0;           // likewise the board's clock
    bool powered_ = true;

    size_t next_step_ = 0;               // all before it are done
    std::set<size_t> done_;              // and some behind it
    std::optional<Waiting> waiting_;     // for the condition of the first open step
    std::optional<int64_t> step_due_us_; // when it was met
    int64_t last_step_us_ = 0;
};

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
