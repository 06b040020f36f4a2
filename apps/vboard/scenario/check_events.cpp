/*
 * check_events.cpp - what happened: texts in the program's output, and platform calls.
 *
 *     log: "text", times: 2
 *     call: MI_VDEC_StartChn, with: {channel: 1, result: 0}, failed: false, times: ">= 2"
 *
 * A text is looked for in each line of standard output and standard error. A call's fields have the names
 * of the call trace; those of a record are written with a point, as "stream.length". "result" is its
 * result, and "channel" a channel however the call names it. A value is a text, a number or a bound.
 */
#include <algorithm>

#include "api/nearest.h"
#include "scenario/check.h"
#include "trace/call_fields.h"

namespace vboard_app::scenario
{
namespace
{

constexpr size_t kShownLines = 3; // of what was seen instead

Verdict judge_count(size_t count, const std::optional<Comparison> &times, const std::string &what,
                    const std::string &instead)
{
    const bool enough = times ? times->holds(static_cast<double>(count)) : count > 0;
    if (enough) return holds();
    return fails(what +
                 (count == 0 ? " never" : " " + std::to_string(count) + (count == 1 ? " time" : " times")) +
                 (count == 0 ? instead : std::string()));
}

class LogCheck final : public Check
{
public:
    LogCheck(std::string text, std::optional<Comparison> times) : text_(std::move(text)), times_(times) {}

    bool counts_events() const override { return true; }
    bool needs_end() const override { return true; }

    Verdict judge(Moment &now, int64_t from_us) override
    {
        size_t count = 0;
        std::string last = "; it has written nothing";
        for (const LogLine &line : now.journal.log) {
            if (line.at_us < from_us || line.at_us > now.now_us) continue;
            last = "; its last line is \"" + line.text + "\"";
            if (line.text.find(text_) == std::string::npos) continue;
            ++count;
            first_seen_ = "\"" + line.text + "\" at " + time_text(line.at_us);
        }
        Verdict verdict = judge_count(count, times_, "the program wrote it", last);
        if (verdict.word == Verdict::Word::holds) verdict.seen = "it wrote " + first_seen_;
        return verdict;
    }

private:
    const std::string text_;
    const std::optional<Comparison> times_;
    std::string first_seen_;
};

struct Wanted {
    std::string field, text;
    std::optional<Comparison> bound;

    bool is(const std::string &value) const
    {
        if (value == text) return true;
        const auto number = number_of_field(value);
        return bound && number && bound->holds(*number);
    }

    static std::optional<double> number_of_field(const std::string &value)
    {
        if (value.starts_with("0x")) {
            try {
                return static_cast<double>(std::stoull(value, nullptr, 16));
            } catch (const std::exception &) {
                return {};
            }
        }
        return number_of(value);
    }
};

class CallCheck final : public Check
{
public:
    CallCheck(std::string name, std::vector<Wanted> with, std::optional<bool> failed,
              std::optional<Comparison> times)
        : name_(std::move(name)), with_(std::move(with)), failed_(failed), times_(times)
    {
    }

    bool counts_events() const override { return true; }
    bool needs_calls() const override { return true; }

    Verdict judge(Moment &now, int64_t from_us) override
    {
        size_t count = 0;
        std::vector<const Call *> others;
        const Call *found = nullptr;
        for (const Call &call : now.journal.calls) {
            if (call.name != name_ || call.at_us < from_us || call.at_us > now.now_us) continue;
            if (!is_wanted(call)) {
                others.push_back(&call);
                continue;
            }
            if (found == nullptr) found = &call;
            ++count;
        }
        std::string instead = others.empty()
                                  ? ": there was no such call"
                                  : ", but with other fields " + std::to_string(others.size()) + " times:";
        for (size_t i = others.size() - std::min(others.size(), kShownLines); i < others.size(); ++i)
            instead += "\n        " + time_text(others[i]->at_us) + "  " + others[i]->text();
        if (now.journal.calls_lost > 0)
            instead +=
                "\n        (" + std::to_string(now.journal.calls_lost) + " calls were too many to be kept)";
        Verdict verdict = judge_count(count, times_, "it was called", instead);
        if (verdict.word == Verdict::Word::holds && found != nullptr)
            verdict.seen = "it was called at " + time_text(found->at_us) + ": " + found->text();
        return verdict;
    }

private:
    bool is_wanted(const Call &call) const
    {
        if (failed_ && call.failed != *failed_) return false;
        return std::all_of(with_.begin(), with_.end(), [&](const Wanted &wanted) {
            if (wanted.field == "result" && wanted.is(call.result)) return true;
            if (wanted.field == "channel" && call.channel && wanted.is(std::to_string(*call.channel)))
                return true;
            return std::any_of(call.arguments.begin(), call.arguments.end(), [&](const auto &argument) {
                return argument.first == wanted.field && wanted.is(argument.second);
            });
        });
    }

    const std::string name_;
    const std::vector<Wanted> with_;
    const std::optional<bool> failed_;
    const std::optional<Comparison> times_;
};

std::vector<std::string> field_names(const CallFields &call)
{
    std::vector<std::string> names = {"result", "channel"};
    for (size_t i = 0; i < call.count; ++i) {
        const std::string name(call.arguments[i].name);
        names.push_back(name);
        for (const std::string_view member : call.arguments[i].members)
            names.push_back(name + "." + std::string(member));
    }
    return names;
}

std::vector<Wanted> wanted_fields(Reader &reader, const CallFields *call)
{
    const TreeNode *node = reader.take("with");
    if (node == nullptr) return {};
    std::vector<Wanted> all;
    Reader fields(*node, "\"with\"", reader.context());
    for (const auto &[key, value] : fields.node().entries) {
        const auto text = fields.text(key.text);
        if (!text) continue;
        all.push_back({key.text, *text, comparison_of(*text)});
    }
    if (call != nullptr) fields.finish(field_names(*call));
    return all;
}

} // namespace

std::unique_ptr<Check> read_log_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"times"});
    const auto text = reader.text("log");
    const auto times = reader.comparison("times");
    if (!text) return nullptr;
    if (text->empty()) reader.problem(reader.take("log")->line, "\"log\" is empty: every line would do");
    return std::make_unique<LogCheck>(*text, times);
}

std::unique_ptr<Check> read_call_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"with", "failed", "times"});
    const auto name = reader.text("call");
    if (!name) return nullptr;
    const CallFields *call = find_call_fields(*name);
    if (call == nullptr) {
        std::vector<std::string> known;
        for (const CallFields &one : all_call_fields())
            known.emplace_back(one.name);
        reader.problem(reader.take("call")->line,
                       "there is no platform call \"" + *name + "\"" + did_you_mean(*name, known));
    }
    auto with = wanted_fields(reader, call);
    const auto failed = reader.boolean("failed");
    const auto times = reader.comparison("times");
    return std::make_unique<CallCheck>(*name, std::move(with), failed, times);
}

} // namespace vboard_app::scenario
