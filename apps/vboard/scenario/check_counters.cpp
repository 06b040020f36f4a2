/*
 * check_counters.cpp - numbers of the board's state, and of the program's life.
 *
 *     decoder: 0, pictures: ">= 50", damaged: 0      counters of a decoder channel
 *     memory: "< 200 MB"                             resident memory of the program
 *     state: monitor.signal, is: true                any value of the request "state"
 *     boot: watchdog                                 why the program was started last
 *     starts: 2                                      how often it was started
 *     exit: 0                                        its exit status, or the signal that ended it
 */
#include <algorithm>

#include "scenario/check.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;

/* Names here, and in the state. */
struct Counter {
    const char *name;
    const char *field;
};
constexpr Counter kCounters[] = {
    {"pictures", "decoded"},
    {"shown", "shown"},
    {"dropped", "dropped"},
    {"damaged", "damaged"},
    {"errors", "decode_errors"},
    {"resets", "resets"},
    {"recreations", "recreations"},
    {"late", "late"},
    {"sent", "frames_sent"},
    {"refused", "sends_refused"},
    {"width", "width"},
    {"height", "height"},
    {"created", "created"},
    {"started", "started"},
};

std::optional<double> as_number(const json &value)
{
    if (value.is_boolean()) return value.get<bool>() ? 1 : 0;
    if (value.is_number()) return value.get<double>();
    return {};
}

Verdict no_state(const Moment &now)
{
    return fails("the board says nothing: " + now.why());
}

struct Bound {
    std::string name, field;
    Comparison comparison;
};

class DecoderCheck final : public Check
{
public:
    DecoderCheck(int64_t channel, std::vector<Bound> bounds) : channel_(channel), bounds_(std::move(bounds))
    {
    }

    Verdict judge(Moment &now, int64_t) override
    {
        const json *state = now.state();
        if (state == nullptr) return no_state(now);
        for (const json &decoder : state->value("decoders", json::array())) {
            if (decoder.value("channel", int64_t{-1}) != channel_) continue;
            return judge_counters(decoder);
        }
        return judge_counters(json::object()); // it was never created: all are 0
    }

private:
    Verdict judge_counters(const json &decoder) const
    {
        std::string wrong;
        for (const Bound &bound : bounds_) {
            const double seen = as_number(decoder.value(bound.field, json(0))).value_or(0);
            if (!bound.comparison.holds(seen))
                wrong += (wrong.empty() ? "" : ", ") + bound.name + " is " + number_text(seen);
        }
        return wrong.empty() ? holds() : fails(wrong);
    }

    const int64_t channel_;
    const std::vector<Bound> bounds_;
};

class MemoryCheck final : public Check
{
public:
    explicit MemoryCheck(Comparison bound) : bound_(bound) {}

    Verdict judge(Moment &now, int64_t) override
    {
        const json *state = now.state();
        if (state == nullptr) return no_state(now);
        const auto kilobytes = as_number(state->value("memory_kb", json()));
        if (!kilobytes) return fails("the board does not tell the program's memory");
        if (bound_.holds(*kilobytes * 1024)) return holds();
        return fails("the program has " +
                     number_text(static_cast<double>(static_cast<int64_t>(*kilobytes / 102.4)) / 10) + " MB");
    }

private:
    const Comparison bound_;
};

class StateCheck final : public Check
{
public:
    StateCheck(std::string path, std::string wanted)
        : path_(std::move(path)), wanted_(std::move(wanted)), bound_(comparison_of(wanted_))
    {
    }

    Verdict judge(Moment &now, int64_t) override
    {
        const json *value = now.state();
        if (value == nullptr) return no_state(now);
        size_t begin = 0;
        while (begin <= path_.size()) {
            const size_t end = std::min(path_.find('.', begin), path_.size());
            const std::string step = path_.substr(begin, end - begin);
            const auto index = integer_of(step);
            if (value->is_object() && value->contains(step))
                value = &value->at(step);
            else if (value->is_array() && index && *index >= 0 && static_cast<size_t>(*index) < value->size())
                value = &value->at(static_cast<size_t>(*index));
            else
                return fails("the state has no \"" + path_.substr(0, end) + "\"");
            begin = end + 1;
        }
        return is_wanted(*value) ? holds() : fails("it is " + value->dump());
    }

private:
    bool is_wanted(const json &value) const
    {
        if (value.is_string()) return value.get<std::string>() == wanted_;
        if (value.is_boolean()) return boolean_of(wanted_) == value.get<bool>();
        if (value.is_null()) return wanted_ == "null";
        const auto number = as_number(value);
        return bound_ && number && bound_->holds(*number);
    }

    const std::string path_, wanted_;
    const std::optional<Comparison> bound_;
};

class BootCheck final : public Check
{
public:
    explicit BootCheck(std::string reason) : reason_(std::move(reason)) {}

    Verdict judge(Moment &now, int64_t) override
    {
        if (now.journal.boot_reason == reason_) return holds();
        return fails("the reason of the last boot is " + now.journal.boot_reason);
    }

private:
    const std::string reason_;
};

class StartsCheck final : public Check
{
public:
    explicit StartsCheck(Comparison times) : times_(times) {}

    Verdict judge(Moment &now, int64_t) override
    {
        if (times_.holds(now.journal.starts)) return holds();
        return fails("the program was started " + std::to_string(now.journal.starts) + " times");
    }

private:
    const Comparison times_;
};

class ExitCheck final : public Check
{
public:
    ExitCheck(std::optional<int> status, std::optional<int> signal) : status_(status), signal_(signal) {}

    bool needs_end() const override { return true; }
    bool expects_end() const override { return true; }

    Verdict judge(Moment &now, int64_t) override
    {
        const auto &end = now.journal.end;
        if (!end) return fails("the program still runs");
        const bool as_wanted =
            !end->killed && (status_ ? end->status == status_ : !end->status && end->signal == signal_);
        return as_wanted ? holds() : fails("it " + end->text());
    }

private:
    const std::optional<int> status_, signal_;
};

} // namespace

std::unique_ptr<Check> read_decoder_check(Reader &reader, std::vector<std::string> &keys)
{
    const auto channel = reader.integer("decoder", 0, 63);
    std::vector<Bound> bounds;
    for (const Counter &counter : kCounters) {
        keys.emplace_back(counter.name);
        if (const auto bound = reader.comparison(counter.name))
            bounds.push_back({counter.name, counter.field, *bound});
    }
    const bool says_what = std::any_of(std::begin(kCounters), std::end(kCounters),
                                       [&](const Counter &counter) { return reader.has(counter.name); });
    if (!says_what)
        reader.problem(reader.line(), "a decoder is to have so many \"pictures\", or another counter");
    return std::make_unique<DecoderCheck>(channel.value_or(0), std::move(bounds));
}

std::unique_ptr<Check> read_memory_check(Reader &reader, std::vector<std::string> &)
{
    const auto bound = reader.comparison("memory");
    return bound ? std::make_unique<MemoryCheck>(*bound) : nullptr;
}

std::unique_ptr<Check> read_state_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"is"});
    const auto path = reader.text("state");
    const auto wanted = reader.text("is");
    if (!reader.has("is")) reader.problem(reader.line(), "\"state\" wants a value: \"is\"");
    return path && wanted ? std::make_unique<StateCheck>(*path, *wanted) : nullptr;
}

std::unique_ptr<Check> read_boot_check(Reader &reader, std::vector<std::string> &)
{
    static const std::vector<std::string> reasons = {"power", "watchdog"};
    const auto reason = reader.choice("boot", reasons);
    return reason ? std::make_unique<BootCheck>(reasons[*reason]) : nullptr;
}

std::unique_ptr<Check> read_starts_check(Reader &reader, std::vector<std::string> &)
{
    const auto times = reader.comparison("starts");
    return times ? std::make_unique<StartsCheck>(*times) : nullptr;
}

std::unique_ptr<Check> read_exit_check(Reader &reader, std::vector<std::string> &)
{
    const auto text = reader.text("exit");
    if (!text) return nullptr;
    if (const auto signal = signal_number(*text)) return std::make_unique<ExitCheck>(std::nullopt, *signal);
    const auto status = reader.integer("exit", 0, 255);
    return status ? std::make_unique<ExitCheck>(static_cast<int>(*status), std::nullopt) : nullptr;
}

} // namespace vboard_app::scenario
