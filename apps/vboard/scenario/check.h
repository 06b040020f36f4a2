/*
 * check.h - one thing that can be true of a board: the screen shows a picture, a pane moves, a call was
 * made. Expectations of a scenario consist of one and a time; conditions that steps wait for are the same.
 *
 * A check that looks at changes (moving, blinking, fed) watches for a span before it can tell. What it has
 * seen it keeps itself, so that a check serves one run.
 */
#ifndef VBOARD_APP_SCENARIO_CHECK_H
#define VBOARD_APP_SCENARIO_CHECK_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "scenario/moment.h"
#include "scenario/reader.h"

namespace vboard_app::scenario
{

struct Verdict {
    enum class Word { holds, fails, open }; // open: nothing can be told yet

    Word word = Word::fails;
    std::string seen;           // what was seen, when it does not hold
    bool holds_if_over = false; // open: what it comes to when there is no more time
};

Verdict holds();
Verdict fails(const std::string &seen);
Verdict open(const std::string &seen, bool holds_if_over);

class Check
{
public:
    virtual ~Check() = default;

    /* How long before its time it has to watch. */
    virtual int64_t span_us() const { return 0; }

    /* It counts what happened in a span instead of looking at one moment. */
    virtual bool counts_events() const { return false; }

    /* It needs the platform calls. Without a time of its own it is judged when the program has ended. It
       is about the program's end, so that one before the scenario's is no failure by itself. */
    virtual bool needs_calls() const { return false; }
    virtual bool needs_end() const { return false; }
    virtual bool expects_end() const { return false; }

    /* Called at every moment of the time that it looks at, from span_us before it on. */
    virtual void watch(Moment &) {}

    /* Whether it holds now; what happened counts from `from_us` on. */
    virtual Verdict judge(Moment &now, int64_t from_us) = 0;

    /*
     * After it has failed: write what helps to see why into a folder.
     * @return name of the file, or nothing
     */
    virtual std::string write_evidence(const std::string &path_without_ending) const
    {
        (void)path_without_ending;
        return {};
    }
};

/* The names of all checks, the keys by which they begin. */
const std::vector<std::string> &check_names();

/*
 * The check of a group of keys, and into `keys` those that it knows. Null: there is none, which is told.
 */
std::unique_ptr<Check> read_check(Reader &reader, std::vector<std::string> &keys);

/* One a kind, in the file of its name. */
std::unique_ptr<Check> read_screen_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_pane_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_log_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_call_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_lamp_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_watchdog_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_decoder_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_memory_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_state_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_boot_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_starts_check(Reader &reader, std::vector<std::string> &keys);
std::unique_ptr<Check> read_exit_check(Reader &reader, std::vector<std::string> &keys);

/* A number as it stands in messages: 50, 0.5. */
std::string number_text(double value);

} // namespace vboard_app::scenario

#endif
