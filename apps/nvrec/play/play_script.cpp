/* play_script.cpp - see play_script.h. */
#include "play/play_script.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "console/exit_code.h"

namespace nvrec
{

Script::ArgumentType Script::number(const std::string &name, double least, double most)
{
    return {name, [least, most](double value) { return value >= least && value <= most; }};
}

Script::ArgumentType Script::whole_number(const std::string &name, int least, int most)
{
    const std::string range = " from " + std::to_string(least) + " to " + std::to_string(most);
    return {name + range, [least, most](double value) {
                return value >= least && value <= most && std::trunc(value) == value;
            }};
}

void Script::add_verb(const std::string &verb, std::vector<ArgumentType> arguments, Action action)
{
    verbs_[verb] = {std::move(arguments), std::move(action)};
}

std::string Script::parse(const std::string &text)
{
    std::istringstream items(text);
    for (std::string item; std::getline(items, item, ',');) {
        const std::string problem = parse_item(item);
        if (!problem.empty()) return std::string("\"").append(item).append("\": ").append(problem);
    }
    std::stable_sort(items_.begin(), items_.end(),
                     [](const Item &a, const Item &b) { return a.at_s < b.at_s; });
    return {};
}

std::string Script::parse_item(const std::string &text)
{
    std::istringstream words(text);
    Item item = {};
    char colon = 0;
    if (!(words >> item.at_s >> colon >> item.verb) || colon != ':' || !(item.at_s >= 0) ||
        item.at_s > kLongest_s)
        return "not SECONDS:VERB";
    const auto verb = verbs_.find(item.verb);
    if (verb == verbs_.end()) {
        std::string known;
        for (const auto &[name, unused] : verbs_)
            known += " " + name;
        return "unknown verb; known are" + known;
    }
    for (double number = 0; words >> number;)
        item.arguments.push_back(number);
    if (!words.eof()) return "arguments are numbers";
    if (std::string problem = problem_with(item, verb->second.arguments); !problem.empty()) return problem;
    items_.push_back(std::move(item));
    return {};
}

std::string Script::problem_with(const Item &item, const std::vector<ArgumentType> &types)
{
    if (item.arguments.size() != types.size())
        return item.verb + " takes " + std::to_string(types.size()) + " arguments";
    for (size_t i = 0; i < types.size(); ++i) {
        if (!types[i].fits(item.arguments[i])) return item.verb + " takes " + types[i].name;
    }
    return {};
}

bool Script::contains_verb(const std::string &verb) const
{
    return std::any_of(items_.begin(), items_.end(), [&](const Item &item) { return item.verb == verb; });
}

Clock::time_point Script::take_turn(Clock::time_point now)
{
    if (began_at_ == Clock::time_point::max()) began_at_ = now;
    while (done_ < items_.size()) {
        const Item &item = items_[done_];
        const Clock::time_point due =
            began_at_ + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(item.at_s));
        if (due > now) return due;
        ++done_;
        verbs_.at(item.verb).action(item.arguments);
    }
    return Clock::time_point::max();
}

} // namespace nvrec
