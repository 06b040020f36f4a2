/* from_text.cpp - see check.h: values as people and addresses write them. */
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ctime>
#include <optional>

#include <nlohmann/json.hpp>

#include "api/check.h"
#include "board/board.h"

namespace vboard_app::api
{
namespace
{

using nlohmann::json;

/* The whole text as an integer, decimal or with 0x in front. */
std::optional<int64_t> integer(std::string_view text)
{
    const bool negative = !text.empty() && text.front() == '-';
    std::string_view digits = text.substr(negative ? 1 : 0);
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits.remove_prefix(2);
        base = 16;
    }
    if (digits.empty() || !std::isxdigit(static_cast<unsigned char>(digits.front()))) return {};
    int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc() || end != digits.data() + digits.size()) return {};
    return negative ? -value : value;
}

std::optional<double> number(std::string_view text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
    return value;
}

/* 2026-03-29T01:59:00Z, a blank in place of the T, the Z left out, or a day alone. */
std::optional<int64_t> point_in_time(const std::string &text)
{
    for (const char *format : {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M", "%Y-%m-%d"}) {
        std::tm when = {};
        const char *rest = strptime(text.c_str(), format, &when);
        if (rest == nullptr || (*rest != '\0' && std::strcmp(rest, "Z") != 0)) continue;
        const int day = when.tm_mday;
        const int64_t seconds = timegm(&when);
        if (when.tm_mday != day) return {}; // the month has no such day
        return seconds;
    }
    return {};
}

std::optional<bool> boolean(const std::string &text)
{
    for (const char *yes : {"on", "true", "yes", "1"})
        if (text == yes) return true;
    for (const char *no : {"off", "false", "no", "0"})
        if (text == no) return false;
    return {};
}

std::optional<json> integers(std::string_view text)
{
    json list = json::array();
    for (;;) {
        const size_t comma = text.find(',');
        const std::optional<int64_t> value = integer(text.substr(0, comma));
        if (!value || list.size() > 64) return {};
        list.push_back(*value);
        if (comma == std::string_view::npos) return list;
        text.remove_prefix(comma + 1);
    }
}

/* A name, or a code: "0" to "9" are names of buttons. */
json button(const std::string &text)
{
    const std::optional<int64_t> code = text.size() > 1 ? integer(text) : std::nullopt;
    return code ? json(*code) : json(text);
}

template <typename Value>
json taken(const std::string &name, const std::optional<Value> &value, const char *what,
           const std::string &text)
{
    if (value) return *value;
    throw RequestError("bad_parameter", "\"" + name + "\" is \"" + text + "\", not " + what, name);
}

std::optional<int64_t> duration(const std::string &text)
{
    int64_t microseconds = 0;
    if (!duration_from_text(text, &microseconds)) return {};
    return microseconds;
}

/* Real time is told in milliseconds. */
std::optional<int64_t> milliseconds(const std::string &text)
{
    if (const std::optional<int64_t> bare = integer(text)) return bare;
    const std::optional<int64_t> with_unit = duration(text);
    if (!with_unit) return {};
    return *with_unit / 1000;
}

} // namespace

bool duration_from_text(const std::string &text, int64_t *microseconds)
{
    if (const std::optional<int64_t> bare = integer(text)) {
        *microseconds = *bare;
        return true;
    }
    struct Unit {
        const char *name;
        double microseconds;
    };
    constexpr Unit kUnits[] = {{"us", 1}, {"ms", 1e3}, {"s", 1e6}, {"m", 60e6}, {"min", 60e6}, {"h", 3600e6}};
    const size_t split = text.find_first_not_of("0123456789.");
    if (split == std::string::npos || split == 0) return false;
    for (const Unit &unit : kUnits) {
        if (text.substr(split) != unit.name) continue;
        const std::optional<double> count = number(std::string_view(text).substr(0, split));
        if (!count || *count * unit.microseconds > 9e18) return false;
        *microseconds = std::llround(*count * unit.microseconds);
        return true;
    }
    return false;
}

json value_from_text(const std::string &name, const json &description, const std::string &text)
{
    const std::string type = description.at("type");
    const std::string unit = description.value("unit", "");
    if (type == "string|integer") return button(text);
    if (type == "string") return text;
    if (type == "boolean") return taken(name, boolean(text), "on or off", text);
    if (type == "array") return taken(name, integers(text), "integers with commas between them", text);
    if (type == "number") return taken(name, number(text), "a number", text);
    if (unit == "us") return taken(name, duration(text), "a duration as 40ms or 2s", text);
    if (unit == "ms") return taken(name, milliseconds(text), "a duration as 40ms or 2s", text);
    if (unit == "s") {
        const std::optional<int64_t> seconds = integer(text);
        return taken(name, seconds ? seconds : point_in_time(text),
                     "seconds since 1970 or a time as 2026-03-29T01:59:00Z", text);
    }
    return taken(name, integer(text), "an integer", text);
}

} // namespace vboard_app::api
