/*
 * play_script.h - a script of what a user would do by hand, with times.
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

#include "wall/module.h"

namespace nvrec
{

class Script final : public Module
{
public:
    using Arguments = std::vector<double>;
    using Action = std::function<void(const Arguments &)>;

    /** What may stand in the place of an argument. */
    struct ArgumentType {
        std::string name; /* as a complaint says it */
        std::function<bool(double)> fits;
    };

    /** Numbers from `least` to `most`, and whole ones only. */
    static ArgumentType number(const std::string &name, double least, double most);
    static ArgumentType whole_number(const std::string &name, int least, int most);

    /** Add a verb and its arguments. Before parse(). */
    void add_verb(const std::string &verb, std::vector<ArgumentType> arguments, Action action);

    /** Read items. @return empty, or what is wrong with them. */
    std::string parse(const std::string &text);

    /** Whether an item has this verb. */
    bool contains_verb(const std::string &verb) const;

    bool start(WallControl &) override { return true; }
    Clock::time_point take_turn(Clock::time_point now) override;

    /** While items are still to come, the wall goes on. */
    bool busy() const override { return done_ < items_.size(); }

private:
    struct Verb {
        std::vector<ArgumentType> arguments;
        Action action;
    };
    struct Item {
        double at_s;
        std::string verb;
        Arguments arguments;
    };
    std::string parse_item(const std::string &text);
    static std::string problem_with(const Item &item, const std::vector<ArgumentType> &types);

    std::map<std::string, Verb> verbs_;
    std::vector<Item> items_; /* by time             */
    size_t done_ = 0;         /* of them             */
    Clock::time_point began_at_ = Clock::time_point::max();
};

} // namespace nvrec
