/*
 * check_devices.cpp - lamps and lines, and the watchdog.
 *
 *     lamp: record, blinks: true, over: 3s      the front panel's record lamp
 *     lamp: line 12, lit: true                  an output line; lit is high
 *     watchdog: fed, over: 10s                  it runs, and was fed within the span
 *     watchdog: expired                         it has ended the program, or has run out since
 *     watchdog: running | off
 *
 * A lamp blinks when it changes at least twice within the span.
 */
#include <algorithm>
#include <deque>

#include "scenario/check.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;

constexpr int64_t kBlinkSpan_us = 3'000'000;
constexpr int64_t kFeedSpan_us = 10'000'000; // the library feeds every three seconds
constexpr int kFewestChanges = 2;

/* A value with its times, as far back as a span. */
class Past
{
public:
    explicit Past(int64_t span_us) : span_us_(span_us) {}

    void add(int64_t at_us, uint64_t value)
    {
        if (!all_.empty() && all_.back().at_us == at_us) return;
        all_.push_back({at_us, value});
        while (all_.size() > 2 && all_[1].at_us <= at_us - span_us_)
            all_.pop_front();
    }

    void forget() { all_.clear(); }

    uint64_t changes(int64_t from_us) const
    {
        uint64_t count = 0;
        for (size_t i = 1; i < all_.size(); ++i)
            if (all_[i - 1].at_us >= from_us && all_[i].value != all_[i - 1].value) ++count;
        return count;
    }

    /* How much it has grown. */
    uint64_t growth(int64_t from_us) const
    {
        for (const Value &one : all_)
            if (one.at_us >= from_us) return all_.back().value - std::min(one.value, all_.back().value);
        return 0;
    }

    bool reaches_back_to(int64_t from_us) const { return !all_.empty() && all_.front().at_us <= from_us; }

private:
    struct Value {
        int64_t at_us;
        uint64_t value;
    };

    const int64_t span_us_;
    std::deque<Value> all_;
};

struct LampOrders {
    std::optional<int64_t> line; // none: the record lamp
    std::optional<bool> lit, blinks;
    int64_t span_us = kBlinkSpan_us;
};

class LampCheck final : public Check
{
public:
    explicit LampCheck(LampOrders orders) : orders_(orders), past_(orders.span_us) {}

    int64_t span_us() const override { return orders_.blinks ? orders_.span_us : 0; }

    void watch(Moment &now) override
    {
        const auto level = level_of(now);
        if (level)
            past_.add(now.now_us, *level ? 1 : 0);
        else
            past_.forget();
    }

    Verdict judge(Moment &now, int64_t from_us) override
    {
        watch(now);
        const auto level = level_of(now);
        if (!level)
            return fails(now.state() == nullptr ? "the board says nothing: " + now.why()
                                                : "the line is no output yet");
        if (orders_.lit && *orders_.lit != *level) return fails(*level ? "it is lit" : "it is dark");
        return orders_.blinks ? judge_blinking(now.now_us, from_us) : holds();
    }

private:
    std::optional<bool> level_of(Moment &now) const
    {
        const json *state = now.state();
        if (state == nullptr) return {};
        if (!orders_.line) {
            const json lamp = state->value("panel", json::object()).value("record_lamp", json());
            return lamp.is_boolean() ? lamp.get<bool>() : lamp.is_number() && lamp.get<int>() != 0;
        }
        for (const json &line : state->value("gpio", json::array()))
            if (line.value("line", int64_t{-1}) == *orders_.line) return line.value("level", 0) != 0;
        return {};
    }

    Verdict judge_blinking(int64_t now_us, int64_t from_us) const
    {
        const int64_t begin = std::max(from_us, now_us - orders_.span_us);
        const uint64_t changes = past_.changes(begin);
        const std::string seen = "it changed " + std::to_string(changes) + " times";
        if (changes >= kFewestChanges) return *orders_.blinks ? holds() : fails(seen);
        if (now_us - begin < orders_.span_us) return open(seen, !*orders_.blinks);
        return *orders_.blinks ? fails(seen + " within " + time_text(orders_.span_us)) : holds();
    }

    const LampOrders orders_;
    Past past_;
};

enum class DogState { fed, running, expired, off };
const std::vector<std::string> kDogStates = {"fed", "running", "expired", "off"};

class WatchdogCheck final : public Check
{
public:
    WatchdogCheck(DogState wanted, int64_t span_us) : wanted_(wanted), span_(span_us), past_(span_us) {}

    int64_t span_us() const override { return wanted_ == DogState::fed ? span_ : 0; }

    void watch(Moment &now) override
    {
        const json dog = state_of(now);
        if (dog.is_object()) past_.add(now.now_us, dog.value("feeds", uint64_t{0}));
    }

    Verdict judge(Moment &now, int64_t from_us) override
    {
        const auto rebooted = now.journal.expired_at_us;
        if (wanted_ == DogState::expired && rebooted && *rebooted >= from_us) return holds();
        const json dog = state_of(now);
        if (!dog.is_object()) return fails("the board says nothing: " + now.why());
        const bool enabled = truth(dog, "enabled"), expired = truth(dog, "expired");
        const std::string seen =
            expired   ? "it has expired"
            : enabled ? "it runs, and has been fed " + dog.value("feeds", json(0)).dump() + " times"
                      : "it is off";
        switch (wanted_) {
        case DogState::fed: return enabled && !expired ? judge_fed(now, from_us) : fails(seen);
        case DogState::running: return enabled && !expired ? holds() : fails(seen);
        case DogState::expired: return expired ? holds() : fails(seen);
        case DogState::off: return !enabled && !expired ? holds() : fails(seen);
        }
        return fails(seen);
    }

private:
    static bool truth(const json &record, const char *name)
    {
        const json value = record.value(name, json(false));
        return value.is_boolean() ? value.get<bool>() : value.is_number() && value.get<double>() != 0;
    }

    static json state_of(Moment &now)
    {
        const json *state = now.state();
        return state != nullptr ? state->value("watchdog", json()) : json();
    }

    Verdict judge_fed(Moment &now, int64_t from_us)
    {
        watch(now);
        const int64_t begin = std::max(from_us, now.now_us - span_);
        if (past_.growth(begin) > 0) return holds();
        const std::string seen = "it runs, but was not fed within " + time_text(now.now_us - begin);
        return now.now_us - begin < span_ ? open(seen, false) : fails(seen);
    }

    const DogState wanted_;
    const int64_t span_;
    Past past_;
};

} // namespace

std::unique_ptr<Check> read_lamp_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"lit", "blinks", "over"});
    LampOrders orders;
    const auto which = reader.text("lamp");
    const std::string prefix = "line ";
    if (which && *which != "record") {
        if (which->starts_with(prefix)) orders.line = integer_of(which->substr(prefix.size()));
        if (!orders.line || *orders.line < 0 || *orders.line > 127)
            reader.problem(reader.take("lamp")->line,
                           "\"lamp\" is \"" + *which + "\", not \"record\" or \"line 0\" to \"line 127\"");
    }
    orders.lit = reader.boolean("lit");
    orders.blinks = reader.boolean("blinks");
    orders.span_us = reader.duration("over").value_or(kBlinkSpan_us);
    if (!reader.has("lit") && !reader.has("blinks"))
        reader.problem(reader.line(), "a lamp is to be \"lit\" or one that \"blinks\"");
    return std::make_unique<LampCheck>(orders);
}

std::unique_ptr<Check> read_watchdog_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"over"});
    const auto wanted = reader.choice("watchdog", kDogStates);
    const int64_t span_us = reader.duration("over").value_or(kFeedSpan_us);
    return std::make_unique<WatchdogCheck>(static_cast<DogState>(wanted.value_or(0)), span_us);
}

} // namespace vboard_app::scenario
