/* call_line.cpp - one line of a call trace, taken apart. */
#include "trace/call_line.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "trace/call_fields.h"

namespace vboard_app
{
namespace
{

constexpr std::string_view kUnknownNames[] = {
    "argument1", "argument2", "argument3", "argument4", "argument5", "argument6", "argument7", "argument8",
};
constexpr size_t kMaxArguments = std::size(kUnknownNames);
constexpr size_t kMaxMembers = 64; // of one record

template <typename Number> bool take_number(std::string_view &text, Number &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return true;
}

bool take(std::string_view &text, std::string_view prefix)
{
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

bool is_name(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
}

bool is_result(std::string_view text)
{
    return text == "address" || text == "null" || field_number(text).has_value();
}

// " ; thread 3, 41 us" at the end; the rest is shortened by it.
void take_timing(std::string_view &line, CallLine &call)
{
    constexpr std::string_view kBefore = " ; thread ", kBetween = ", ", kAfter = " us";
    const size_t at = line.rfind(kBefore);
    if (at == std::string_view::npos) return;
    std::string_view rest = line.substr(at + kBefore.size());
    uint32_t thread = 0;
    int64_t duration_us = 0;
    if (!take_number(rest, thread) || !take(rest, kBetween) || !take_number(rest, duration_us) ||
        rest != kAfter || duration_us < 0)
        return;
    call.thread = thread;
    call.duration_us = duration_us;
    line = line.substr(0, at);
}

// " = RESULT" or " = RESULT (REASON)" at the end. No result and no reason has another " = " in it, but a
// text argument may.
std::string_view take_result(std::string_view &line, CallLine &call)
{
    constexpr std::string_view kSign = " = ";
    const size_t at = line.rfind(kSign);
    if (at == std::string_view::npos) return "no result";
    std::string_view result = line.substr(at + kSign.size());
    line = line.substr(0, at);
    const size_t blank = result.find(' ');
    if (blank != std::string_view::npos) {
        const std::string_view reason = result.substr(blank + 1);
        if (reason.size() < 3 || reason.front() != '(' || reason.back() != ')')
            return "a result that is none";
        call.reason = reason.substr(1, reason.size() - 2);
        result = result.substr(0, blank);
    }
    if (!is_result(result)) return "a result that is none";
    call.result = result;
    return {};
}

// "{name=value name=value}"
std::string_view add_members(std::string_view record, std::vector<CallField> &members)
{
    const size_t before = members.size();
    std::string_view rest = record.substr(1, record.size() - 2);
    while (!rest.empty()) {
        const std::string_view member = rest.substr(0, rest.find(' '));
        const size_t sign = member.find('=');
        if (sign == std::string_view::npos || !is_name(member.substr(0, sign)) || sign + 1 == member.size())
            return "a member of a record without a name or a value";
        if (members.size() - before == kMaxMembers) return "a record of too many members";
        members.push_back({member.substr(0, sign), member.substr(sign + 1)});
        rest.remove_prefix(std::min(rest.size(), member.size() + 1));
    }
    return {};
}

// The next argument in front of `rest`, which stands behind its blank.
std::string_view add_argument(std::string_view &rest, std::string_view name, CallLine &call)
{
    CallField field;
    field.name = name;
    size_t size = 0;
    if (rest.starts_with('"')) {
        const size_t last = rest.rfind('"');
        if (last == 0) return "a text without its end";
        field.quoted = true;
        field.text = rest.substr(1, last - 1);
        size = last + 1;
    } else if (rest.starts_with('{')) {
        const size_t end = rest.find('}');
        if (end == std::string_view::npos) return "a record without its end";
        size = end + 1;
        field.text = rest.substr(0, size);
        field.first_member = static_cast<uint32_t>(call.record_members.size());
        if (const std::string_view wrong = add_members(field.text, call.record_members); !wrong.empty())
            return wrong;
        field.member_count = static_cast<uint32_t>(call.record_members.size()) - field.first_member;
    } else {
        size = std::min(rest.find(' '), rest.size());
        field.text = rest.substr(0, size);
        if (field.text.empty()) return "an argument that is missing";
    }
    rest.remove_prefix(size);
    if (!rest.empty() && !take(rest, " ")) return "no blank between two arguments";
    call.arguments.push_back(field);
    return {};
}

std::string_view add_arguments(std::string_view rest, CallLine &call)
{
    const CallFields *fields = find_call_fields(call.name);
    for (size_t index = 0; !rest.empty(); ++index) {
        if (index == kMaxArguments) return "too many arguments";
        const bool known = fields != nullptr && index < fields->count;
        const std::string_view name = known ? fields->arguments[index].name : kUnknownNames[index];
        if (const std::string_view wrong = add_argument(rest, name, call); !wrong.empty()) return wrong;
    }
    if (fields != nullptr && call.arguments.size() < fields->count)
        return "fewer arguments than the call has";
    return {};
}

std::string_view parse_event(std::string_view rest, CallLine &call)
{
    call.event = true;
    call.name = rest.substr(0, rest.find(' '));
    if (!is_name(call.name)) return "an event without a name";
    rest.remove_prefix(call.name.size());
    if (rest.empty()) return {};
    if (!take(rest, " {") || rest.find('}') != rest.size() - 1) return "an event that is no record";
    const std::string_view record(rest.data() - 1, rest.size() + 1);
    return add_members(record, call.arguments);
}

std::optional<uint32_t> channel_of(const CallLine &call)
{
    for (const std::string_view path : {"channel", "source.channel", "port.channel"})
        if (const std::optional<int64_t> number = call.number(path))
            if (*number >= 0 && *number <= UINT32_MAX) return static_cast<uint32_t>(*number);
    return std::nullopt;
}

// Media calls give 0 or a code; the board's input and output gives 0, a count or an address. A fault can
// make a call give any code.
bool is_failure(const CallLine &call)
{
    if (call.name.starts_with("MI_")) return call.result != "0";
    return call.result == "null" || call.result.starts_with('-') || call.result.starts_with("0x");
}

void clear(CallLine &call)
{
    call.event = call.failed = false;
    call.name = call.result = call.reason = {};
    call.arguments.clear();
    call.record_members.clear();
    call.thread.reset();
    call.duration_us.reset();
    call.channel.reset();
}

} // namespace

std::optional<int64_t> field_number(std::string_view text)
{
    const bool hexadecimal = text.starts_with("0x");
    if (hexadecimal) text.remove_prefix(2);
    const char *end_of_text = text.data() + text.size();
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), end_of_text, number, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != end_of_text) return std::nullopt;
    if (hexadecimal && text.front() == '-') return std::nullopt;
    return number;
}

const CallField *CallLine::find(std::string_view path) const
{
    const size_t dot = path.find('.');
    for (const CallField &argument : arguments) {
        if (argument.name != path.substr(0, dot)) continue;
        if (dot == std::string_view::npos) return &argument;
        for (const CallField &member : members(argument))
            if (member.name == path.substr(dot + 1)) return &member;
    }
    return nullptr;
}

std::optional<int64_t> CallLine::number(std::string_view path) const
{
    const CallField *field = find(path);
    return field != nullptr && !field->quoted ? field_number(field->text) : std::nullopt;
}

std::string_view parse_call(std::string_view line, CallLine &call)
{
    clear(call);
    if (line.find('\0') != std::string_view::npos) return "a zero byte";
    if (!take_number(line, call.time_us) || !take(line, " ")) return "no time at its beginning";
    if (take(line, "event ")) return parse_event(line, call);
    take_timing(line, call);
    if (const std::string_view wrong = take_result(line, call); !wrong.empty()) return wrong;
    call.name = line.substr(0, line.find(' '));
    if (!is_name(call.name)) return "no name of a call";
    line.remove_prefix(std::min(line.size(), call.name.size() + 1));
    if (const std::string_view wrong = add_arguments(line, call); !wrong.empty()) return wrong;
    call.channel = channel_of(call);
    call.failed = is_failure(call);
    return {};
}

} // namespace vboard_app
