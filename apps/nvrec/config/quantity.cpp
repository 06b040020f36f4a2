/* quantity.cpp - see quantity.h. */
#include "config/quantity.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <string_view>

#include "console/text.h"

namespace nvrec::config
{
namespace
{

struct Unit {
    std::string_view name; /* in small letters */
    double factor;
};

constexpr Unit kTimes[] = {
    {"s", 1},        {"second", 1},   {"seconds", 1},   {"min", 60},       {"minute", 60},
    {"minutes", 60}, {"h", 3600},     {"hour", 3600},   {"hours", 3600},   {"d", 86400},
    {"day", 86400},  {"days", 86400}, {"week", 604800}, {"weeks", 604800},
};
constexpr Unit kSizes[] = {
    {"kb", 1e3},           {"mb", 1e6},
    {"gb", 1e9},           {"tb", 1e12},
    {"kib", 1024},         {"mib", 1024.0 * 1024},
    {"gib", 1073741824.0}, {"tib", 1099511627776.0},
};

constexpr std::array<std::string_view, 7> kDays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr double kMost = 1e15; /* far beyond any disk and any archive */
constexpr int kHour_min = 60;
constexpr int kDay_min = 24 * kHour_min;

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

/* "1.5 TB": a number of 0 or more, blanks, one of the units. */
template <size_t kCount> std::optional<double> quantity(std::string_view text, const Unit (&units)[kCount])
{
    text = trimmed(text);
    double number = 0;
    const auto [rest, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc() || !std::isfinite(number) || std::signbit(number)) return std::nullopt;
    const std::string name = small_letters(trimmed(text.substr(static_cast<size_t>(rest - text.data()))));
    const auto *unit = std::ranges::find(units, name, &Unit::name);
    if (unit == std::end(units) || number * unit->factor > kMost) return std::nullopt;
    return number * unit->factor;
}

/* "08:30" in minutes; 24:00 is the day's end. */
std::optional<int> minute_of(std::string_view text)
{
    int hour = -1;
    int minute = -1;
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || text.size() - colon != 3) return std::nullopt;
    const auto hours = std::from_chars(text.data(), text.data() + colon, hour);
    const auto minutes = std::from_chars(text.data() + colon + 1, text.data() + text.size(), minute);
    if (hours.ec != std::errc() || hours.ptr != text.data() + colon || minutes.ec != std::errc() ||
        minutes.ptr != text.data() + text.size())
        return std::nullopt;
    const int total = hour * kHour_min + minute;
    if (hour < 0 || minute < 0 || minute >= kHour_min || total > kDay_min) return std::nullopt;
    return total;
}

std::optional<int> day_of(std::string_view text)
{
    const auto found = std::ranges::find(kDays, small_letters(trimmed(text)));
    if (found == kDays.end()) return std::nullopt;
    return static_cast<int>(found - kDays.begin());
}

/* "Mon-Fri,Sun"; a span of days may go beyond the end of the week. */
std::optional<uint8_t> days_of(std::string_view text)
{
    unsigned days = 0;
    while (!text.empty()) {
        const size_t comma = std::min(text.find(','), text.size());
        const std::string_view part = text.substr(0, comma);
        text.remove_prefix(std::min(comma + 1, text.size()));
        const size_t dash = part.find('-');
        const auto first = day_of(part.substr(0, dash));
        const auto last = dash == std::string_view::npos ? first : day_of(part.substr(dash + 1));
        if (!first || !last) return std::nullopt;
        for (int day = *first;; day = (day + 1) % static_cast<int>(kDays.size())) {
            days |= 1u << day;
            if (day == *last) break;
        }
    }
    if (days == 0) return std::nullopt;
    return static_cast<uint8_t>(days);
}

} // namespace

std::optional<double> seconds_of(const std::string &text)
{
    return quantity(text, kTimes);
}

std::optional<int64_t> bytes_of(const std::string &text)
{
    const auto bytes = quantity(text, kSizes);
    if (!bytes) return std::nullopt;
    return static_cast<int64_t>(std::llround(*bytes));
}

std::optional<Hours> hours_of(const std::string &given)
{
    std::string_view text = trimmed(given);
    Hours hours;
    const size_t blank = text.rfind(' ');
    if (blank != std::string_view::npos) {
        const auto days = days_of(trimmed(text.substr(0, blank)));
        if (!days) return std::nullopt;
        hours.days = *days;
        text = text.substr(blank + 1);
    }
    const size_t dash = text.find('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const auto from = minute_of(text.substr(0, dash));
    const auto to = minute_of(text.substr(dash + 1));
    if (!from || !to || *from == kDay_min || *to == *from || *to == 0) return std::nullopt;
    hours.from_min = *from;
    hours.to_min = *to;
    return hours;
}

} // namespace nvrec::config
