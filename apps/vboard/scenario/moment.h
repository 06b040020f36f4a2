/*
 * moment.h - what can be known of a board at one time of a scenario: its state and its pictures, each
 * fetched once and only when somebody asks, and what has happened since the program's start.
 *
 * Times are microseconds of the board's clock since the program's first start.
 */
#ifndef VBOARD_APP_SCENARIO_MOMENT_H
#define VBOARD_APP_SCENARIO_MOMENT_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "board/board.h"
#include "scenario/image.h"

namespace vboard_app::scenario
{

struct LogLine {
    int64_t at_us = 0; // when it was read
    std::string text;
};

struct Call {
    int64_t at_us = 0;
    std::string name;
    std::optional<int> channel;
    bool failed = false;
    std::string result;
    std::vector<std::pair<std::string, std::string>> arguments; // name, value

    std::string text() const; // as a line
};

struct ProgramEnd {
    int64_t at_us = 0;
    std::optional<int> status; // otherwise a signal ended it
    int signal = 0;
    bool killed = false; // by us, because it did not end

    std::string text() const;
};

/* What has happened so far. */
struct Journal {
    std::vector<LogLine> log;
    std::vector<Call> calls;
    uint64_t calls_lost = 0;
    int starts = 1; // of the program
    std::string boot_reason = "power";
    std::optional<int64_t> expired_at_us; // when the watchdog ended the program
    std::optional<ProgramEnd> end;
};

class Moment
{
public:
    /* @param state  when it is known already; null otherwise */
    Moment(Board &board, const Journal &past, int64_t at_us, nlohmann::json state = {})
        : journal(past), now_us(at_us), board_(board)
    {
        if (!state.is_null()) state_ = std::move(state);
    }

    const Journal &journal;
    const int64_t now_us;

    /* The result of the request "state"; null: the board gives none, and why() says the reason. */
    const nlohmann::json *state();

    /* What the monitor shows; null as above. */
    const Image *screen();

    /* What a display device shows; null as above. */
    const Picture *picture(int device);
    const Image *image(int device);

    const std::string &why() const { return why_; }

private:
    Board &board_;
    std::string why_;
    std::optional<nlohmann::json> state_;
    std::optional<Image> screen_;
    std::map<int, Picture> pictures_;
    std::map<int, Image> images_;
};

/* "1.04 s": a time of the scenario in a message. */
std::string time_text(int64_t microseconds);

std::string signal_name(int number);                       // "TERM"
std::optional<int> signal_number(const std::string &name); // "TERM", "SIGTERM"
const std::vector<std::string> &signal_names();

} // namespace vboard_app::scenario

#endif
