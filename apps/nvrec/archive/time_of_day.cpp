/* time_of_day.cpp - see time_of_day.h. */
#include "archive/time_of_day.h"

#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr int64_t kWholeSecond_us = 1'000'000;
constexpr int kDay_s = 24 * 3600;
constexpr int64_t kLongestSpan_s = int64_t{100} * 366 * kDay_s;

/* A date and a time of day, as written. */
struct Written {
    int year = 0, month = 0, day = 0;
    int hour = 0, minute = 0, second = 0;
    int64_t part_us = 0;
    std::optional<int> offset_s; /* east of Greenwich */
};

class Words
{
public:
    explicit Words(std::string_view text) : text_(text) { skip_blanks(); }

    bool empty() const { return text_.empty(); }
    bool take(char letter)
    {
        if (text_.empty() || text_.front() != letter) return false;
        text_.remove_prefix(1);
        return true;
    }
    bool take_word(std::string_view word)
    {
        if (!text_.starts_with(word)) return false;
        text_.remove_prefix(word.size());
        return true;
    }
    bool starts_with_digit() const
    {
        return !text_.empty() && std::isdigit(static_cast<unsigned char>(text_[0]));
    }

    /** Digits, from `fewest` to `most` of them. */
    bool number(size_t fewest, size_t most, int *value)
    {
        size_t count = 0;
        int64_t sum = 0;
        while (count < most && count < text_.size() && std::isdigit(static_cast<unsigned char>(text_[count])))
            sum = 10 * sum + (text_[count++] - '0');
        if (count < fewest) return false;
        text_.remove_prefix(count);
        *value = static_cast<int>(sum);
        return true;
    }
    /**
     * The fraction behind a number, ".5": one to six digits, in millionths. @return false = it is no fraction
     */
    bool millionths(int64_t *value)
    {
        *value = 0;
        if (!take('.')) return true;
        const size_t digits = digits_ahead();
        int part = 0;
        if (digits > 6 || !number(1, 6, &part)) return false;
        *value = part;
        for (size_t i = digits; i < 6; ++i)
            *value *= 10;
        return true;
    }
    size_t digits_ahead() const
    {
        size_t count = 0;
        while (count < text_.size() && std::isdigit(static_cast<unsigned char>(text_[count])))
            ++count;
        return count;
    }
    void skip_blanks()
    {
        while (!text_.empty() && text_.front() == ' ')
            text_.remove_prefix(1);
    }

private:
    std::string_view text_;
};

tm fields_at(int64_t seconds)
{
    const auto time = static_cast<time_t>(seconds);
    tm fields = {};
    localtime_r(&time, &fields);
    return fields;
}

int64_t as_if_utc(const Written &written)
{
    tm fields = {};
    fields.tm_year = written.year - 1900;
    fields.tm_mon = written.month - 1;
    fields.tm_mday = written.day;
    fields.tm_hour = written.hour;
    fields.tm_min = written.minute;
    fields.tm_sec = written.second;
    return timegm(&fields);
}

/*
 * The first second at which local clocks showed this time, tried with the offset of the day before and that
 * of the day after.
 */
std::optional<int64_t> first_local(const Written &written)
{
    const int64_t plain_s = as_if_utc(written);
    std::optional<int64_t> first;
    for (const int64_t day : {-1, 1}) {
        const int64_t candidate_s = plain_s - fields_at(plain_s + day * kDay_s).tm_gmtoff;
        const tm fields = fields_at(candidate_s);
        if (fields.tm_hour != written.hour % 24 || fields.tm_min != written.minute) continue;
        if (!first || candidate_s < *first) first = candidate_s;
    }
    return first;
}

/* "14:05", "14:05:30.5", and "+01:00", "+0100", "+01" or "Z" behind it. */
bool read_clock(Words *words, Written *written)
{
    if (!words->number(1, 2, &written->hour) || !words->take(':') || !words->number(2, 2, &written->minute))
        return false;
    if (words->take(':') && !words->number(2, 2, &written->second)) return false;
    if (!words->millionths(&written->part_us)) return false;
    words->skip_blanks();
    if (words->take('Z')) {
        written->offset_s = 0;
        return true;
    }
    const bool east = words->take('+');
    if (!east && !words->take('-')) return true;
    int hours = 0, minutes = 0;
    if (!words->number(2, 2, &hours)) return false;
    words->take(':');
    if (words->starts_with_digit() && !words->number(2, 2, &minutes)) return false;
    if (hours > 14 || minutes > 59) return false;
    written->offset_s = (east ? 60 : -60) * (60 * hours + minutes);
    return true;
}

/* "10m", "1h30m", "2.5s" */
bool read_span(Words *words, int64_t *span_us)
{
    *span_us = 0;
    if (words->empty()) return false;
    while (!words->empty()) {
        int count = 0;
        int64_t part_us = 0;
        if (words->digits_ahead() > 9 || !words->number(1, 9, &count) || !words->millionths(&part_us))
            return false;
        const int64_t unit_s = words->take('s')   ? 1
                               : words->take('m') ? 60
                               : words->take('h') ? 3600
                               : words->take('d') ? kDay_s
                                                  : 0;
        if (unit_s == 0) return false;
        if (count > kLongestSpan_s / unit_s) return false;
        *span_us += unit_s * (count * kWholeSecond_us + part_us);
    }
    return true;
}

bool has_day(const Written &written)
{
    const tm there = [&] {
        const auto time = static_cast<time_t>(as_if_utc(written));
        tm fields = {};
        gmtime_r(&time, &fields);
        return fields;
    }();
    return there.tm_mon == written.month - 1 && there.tm_mday == written.day;
}

std::string read_date_and_clock(Words words, int64_t now_us, Written *written)
{
    const tm today = fields_at(now_us / kWholeSecond_us);
    *written = {today.tm_year + 1900, today.tm_mon + 1, today.tm_mday, 0, 0, 0, 0, {}};
    const bool yesterday = words.take_word("yesterday");
    if (yesterday || words.take_word("today")) {
        tm day = today;
        day.tm_mday -= yesterday;
        day.tm_hour = 12; /* far from where clocks are set */
        day.tm_isdst = -1;
        mktime(&day);
        *written = {day.tm_year + 1900, day.tm_mon + 1, day.tm_mday, 0, 0, 0, 0, {}};
        words.skip_blanks();
        words.take(',');
        words.skip_blanks();
        if (words.empty()) return {};
    } else if (words.digits_ahead() == 4) {
        if (!words.number(4, 4, &written->year) || !words.take('-') || !words.number(2, 2, &written->month) ||
            !words.take('-') || !words.number(2, 2, &written->day))
            return "a date is YYYY-MM-DD";
        if (written->year < 1970 || written->month < 1 || written->month > 12 || !has_day(*written))
            return "there is no such day";
        words.take('T') || words.take('t');
        words.skip_blanks();
        if (words.empty()) return {};
    }
    if (!read_clock(&words, written)) return "not a time";
    words.skip_blanks();
    if (!words.empty()) return "there is more behind the time";
    if (written->hour > 23 || written->minute > 59 || written->second > 59)
        return "there is no such time of day";
    return {};
}

} // namespace

int64_t wall_now_us()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count();
}

int64_t wall_ahead_us()
{
    return wall_now_us() - Clock::now().time_since_epoch().count();
}

std::optional<int64_t> read_time(std::string_view text, int64_t now_us, std::string *problem,
                                 std::optional<int64_t> from_us)
{
    constexpr const char *kForms = "; write 2026-11-21T14:05, 14:05:30, \"yesterday 14:05\" or -10m";
    auto refuse = [&](const std::string &why) {
        *problem = "\"" + std::string(text) + "\": " + why + kForms;
        return std::nullopt;
    };
    while (text.ends_with(' '))
        text.remove_suffix(1);
    Words words(text);
    if (words.empty()) return refuse("no time");
    if (text == "now") return now_us;
    for (const char sign : {'-', '+'}) {
        if (!words.take(sign)) continue;
        int64_t span_us = 0;
        if (!read_span(&words, &span_us)) return refuse("not a number of s, m, h or d");
        if (sign == '-') return now_us - span_us;
        if (!from_us) return refuse("nothing is recorded in the future");
        return *from_us + span_us;
    }
    Written written;
    const std::string wrong = read_date_and_clock(words, now_us, &written);
    if (!wrong.empty()) return refuse(wrong);
    if (written.offset_s) return (as_if_utc(written) - *written.offset_s) * kWholeSecond_us + written.part_us;
    const std::optional<int64_t> seconds = first_local(written);
    if (!seconds) return refuse("clocks were set forward over that time");
    return *seconds * kWholeSecond_us + written.part_us;
}

std::string time_text(int64_t wall_us)
{
    const tm fields = fields_at(wall_us / kWholeSecond_us);
    char text[48];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %z", &fields);
    return text;
}

std::string iso_time(int64_t wall_us)
{
    const int64_t second = wall_us / kWholeSecond_us - (wall_us % kWholeSecond_us < 0);
    const tm fields = fields_at(second);
    char clock[40], text[64];
    std::strftime(clock, sizeof clock, "%Y-%m-%dT%H:%M:%S", &fields);
    const long offset_min = fields.tm_gmtoff / 60;
    std::snprintf(text, sizeof text, "%s.%06d%c%02d:%02d", clock,
                  static_cast<int>(wall_us - second * kWholeSecond_us), offset_min < 0 ? '-' : '+',
                  static_cast<int>(std::labs(offset_min) / 60), static_cast<int>(std::labs(offset_min) % 60));
    return text;
}

std::string duration_text(int64_t us)
{
    const int64_t seconds = us / kWholeSecond_us;
    char text[48];
    if (seconds >= 3600)
        std::snprintf(text, sizeof text, "%lld:%02d:%02d", static_cast<long long>(seconds / 3600),
                      static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    else
        std::snprintf(text, sizeof text, "%d:%02d", static_cast<int>(seconds / 60),
                      static_cast<int>(seconds % 60));
    return text;
}

} // namespace nvrec
