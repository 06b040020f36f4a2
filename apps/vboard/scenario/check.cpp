/* check.cpp - see check.h: which kinds there are. */
#include "scenario/check.h"

#include <algorithm>
#include <cstdio>

namespace vboard_app::scenario
{
namespace
{

struct Kind {
    const char *name;
    std::unique_ptr<Check> (*read)(Reader &reader, std::vector<std::string> &keys);
};

constexpr Kind kKinds[] = {
    {"screen", read_screen_check},   {"pane", read_pane_check},     {"log", read_log_check},
    {"call", read_call_check},       {"lamp", read_lamp_check},     {"watchdog", read_watchdog_check},
    {"decoder", read_decoder_check}, {"memory", read_memory_check}, {"state", read_state_check},
    {"boot", read_boot_check},       {"starts", read_starts_check}, {"exit", read_exit_check},
};

} // namespace

Verdict holds()
{
    return {Verdict::Word::holds, {}, true};
}

Verdict fails(const std::string &seen)
{
    return {Verdict::Word::fails, seen, false};
}

Verdict open(const std::string &seen, bool holds_if_over)
{
    return {Verdict::Word::open, seen, holds_if_over};
}

const std::vector<std::string> &check_names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Kind &kind : kKinds)
            all.emplace_back(kind.name);
        return all;
    }();
    return names;
}

std::unique_ptr<Check> read_check(Reader &reader, std::vector<std::string> &keys)
{
    const Kind *chosen = nullptr;
    for (const Kind &kind : kKinds) {
        keys.emplace_back(kind.name);
        if (!reader.has(kind.name)) continue;
        if (chosen != nullptr) {
            reader.problem(reader.line(), std::string("\"") + chosen->name + "\" and \"" + kind.name +
                                              "\" stand side by side; each wants an entry of its own");
            return nullptr;
        }
        chosen = &kind;
    }
    return chosen != nullptr ? chosen->read(reader, keys) : nullptr;
}

std::string number_text(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

} // namespace vboard_app::scenario
