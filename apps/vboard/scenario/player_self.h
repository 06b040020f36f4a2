/* player_self.h - what one playing of a scenario knows and does; see player.h. Included by player*.cpp alone.
 */
#ifndef VBOARD_APP_SCENARIO_PLAYER_SELF_H
#define VBOARD_APP_SCENARIO_PLAYER_SELF_H

#include <chrono>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "scenario/player.h"
#include "scenario/timeline.h"

namespace vboard_app::scenario
{

/* The run cannot go on. */
class Broken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Player
{
public:
    Player(Scenario &scenario, Session &session, const PlayOrders &orders, Outcome &outcome);
    void run();

private:
    // player.cpp: the course of it, and what is judged
    bool look_and_act();
    void check_limits();
    bool over() const;
    void take_news();
    void take_log_and_calls();
    void judge(Moment &moment);
    void note(const Judgement &one, Moment *moment);
    std::string evidence_of(const Expectation &expectation, Moment &moment);
    std::string output_path(const std::string &name);
    Failure &fail(int line, const std::string &expected, const std::string &seen);

    // player_time.cpp: the board's clock, and its power
    void settle();
    void take_time();
    bool has_expired() const;
    int64_t elapsed_us() const;
    void advance();
    int64_t next_due_us() const;

    bool power_is_back();
    bool wait_for_power();
    void note_boot();

    // player_steps.cpp: what is done
    bool take_step(Moment &moment);
    size_t first_open() const;
    bool is_met(const Step &step, Moment &moment);
    void carry_out(size_t index);
    void carry_out(int line, const Request &request);
    void take_shot(const Step &step);
    void give_up_steps(const std::string &why);

    // player_end.cpp: the end of the program, and what is judged then
    void finish();
    void judge_rest(Moment &moment, bool ended);
    void end_program();
    void step_towards_end();
    void take_last_words();

    Scenario &scenario_;
    Session &session_;
    Board &board_;
    const PlayOrders &orders_;
    Outcome &outcome_;
    const std::chrono::steady_clock::time_point began_;
    Journal journal_;
    std::vector<Judgement> judgements_;
    bool expects_end_ = false;

    int64_t now_us_ = 0;
    nlohmann::json state_;
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

} // namespace vboard_app::scenario

#endif
