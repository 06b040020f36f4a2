/*
 * play_script.h - what a user would do by hand, written down with its times.
 *
 *   "2:pause, 3:resume, 4:seek 10, 8:enlarge 1, 9:live"
 *
 * Items are SECONDS:VERB ARGUMENTS, seconds counted from the moment the cameras run; arguments are
 * numbers, apart by blanks. Items need not be in order; those of one time run in the order written.
 *
 * Threads: main thread.
 */
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "wall/companion.h"

namespace nvrec
{

class Script final : public Companion
{
public:
    using Arguments = std::vector<double>;
    using Deed = std::function<void(const Arguments &)>;

    /** What may stand in the place of an argument. */
    struct Kind {
        std::string name; /* as a complaint says it */
        std::function<bool(double)> fits;
    };

    /** Numbers from `least` to `most`, and whole ones only. */
    static Kind number(const std::string &name, double least, double most);
    static Kind whole_number(const std::string &name, int least, int most);

    /** Know a verb and its arguments. Before parse(). */
    void offer(const std::string &verb, std::vector<Kind> arguments, Deed deed);

    /** Take items up. @return empty, or what is wrong with them. */
    std::string parse(const std::string &text);

    /** True when an item says this. */
    bool says(const std::string &verb) const;

    bool start(WallControl &) override { return true; }
    Clock::time_point take_turn(Clock::time_point now) override;

    /** Items that are still to come keep the wall standing. */
    bool busy() const override { return done_ < items_.size(); }

private:
    struct Verb {
        std::vector<Kind> arguments;
        Deed deed;
    };
    struct Item {
        double at_s;
        std::string verb;
        Arguments arguments;
    };
    std::string parse_item(const std::string &text);
    static std::string complaint_about(const Item &item, const std::vector<Kind> &kinds);

    std::map<std::string, Verb> verbs_;
    std::vector<Item> items_; /* by time             */
    size_t done_ = 0;         /* of them             */
    Clock::time_point began_at_ = Clock::time_point::max();
};

} // namespace nvrec
