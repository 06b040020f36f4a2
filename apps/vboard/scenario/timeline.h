/* timeline.h - expectations and conditions over the time of a run: when each is looked at, and judged. */
#ifndef VBOARD_APP_SCENARIO_TIMELINE_H
#define VBOARD_APP_SCENARIO_TIMELINE_H

#include <optional>
#include <string>

#include "scenario/scenario.h"

namespace vboard_app::scenario
{

/* A condition that is waited for. */
class Waiting
{
public:
    enum class Word { waits, met, too_late };

    Waiting(const Condition &condition, int64_t from_us) : condition_(condition), from_us_(from_us) {}

    Word look(Moment &now);

    int64_t due_us() const { return met_us_ + condition_.then_us; } // when met
    const std::string &seen() const { return seen_; }
    std::optional<int64_t> deadline_us() const;

private:
    const Condition &condition_;
    const int64_t from_us_;
    int64_t met_us_ = 0;
    std::string seen_;
};

/* An expectation that is under way. */
class Judgement
{
public:
    explicit Judgement(const Expectation &expectation);

    const Expectation &expectation() const { return *expectation_; }

    bool decided() const { return decided_; }
    bool passed() const { return passed_; }
    const std::string &seen() const { return seen_; } // when it failed

    /* At every moment of the run. */
    void look(Moment &now);

    /* Without a time of its own: at the run's end. `ended`: the program has ended, too. */
    bool has_own_time() const;
    void look_at_end(Moment &now, bool ended);

    /* It cannot be looked at any more: the program has ended. */
    void give_up(const std::string &why);

    /* The next time after `now_us` at which it must be looked at exactly. */
    std::optional<int64_t> next_us(int64_t now_us) const;

private:
    void decide(bool passed, const std::string &seen);
    void judge_at_last(const Verdict &verdict);
    void look_during(Moment &now, int64_t from_us, int64_t to_us);
    void look_within(Moment &now, int64_t from_us, int64_t to_us);
    void look_at(Moment &now, int64_t at_us);
    std::optional<int64_t> at_us() const;

    const Expectation *expectation_;
    std::optional<Waiting> waiting_;
    std::optional<int64_t> after_us_; // when its condition was met
    bool decided_ = false, passed_ = false;
    std::string seen_;
};

} // namespace vboard_app::scenario

#endif
