/* time_line.cpp - see time_line.h. */
#include "screen/time_line.h"

#include <algorithm>
#include <iterator>

#include "archive/time_of_day.h"
#include "screen/glyphs.h"
#include "screen/time_line_texts.h"

namespace nvrec
{
namespace
{

constexpr int64_t kSecond_us = 1'000'000, kMinute_us = 60 * kSecond_us, kHour_us = 60 * kMinute_us;

struct SpanRow {
    int64_t span_us; /* shown at once                     */
    int64_t step_us; /* by a key: some thirty to sixty a line */
};

constexpr SpanRow kSpans[] = {
    {kMinute_us, 2 * kSecond_us},    {10 * kMinute_us, 10 * kSecond_us}, {kHour_us, kMinute_us},
    {6 * kHour_us, 10 * kMinute_us}, {24 * kHour_us, 30 * kMinute_us},   {7 * 24 * kHour_us, 4 * kHour_us},
};
constexpr Colour kLineGround = 0x14181C, kLineTrough = 0x303840, kLineRecorded = 0x3C9A5F,
                 kLineNow = 0xF0C040, kLineLetters = 0xE8ECF0, kLineQuiet = 0xA0A8B0;
constexpr int kNames_share = 8; /* of the width: an eighth */

} // namespace

TimeLine::TimeLine(Font *font, const Rect &screen, int text_px, Language language)
    : font_(font), screen_(screen), text_px_(text_px), language_(language)
{
    lay();
}

void TimeLine::lay()
{
    const int rows = std::max<int>(1, static_cast<int>(state_.rows.size()));
    const int margin = text_px_ / 2;
    const int line = text_px_ * 3 / 2;
    row_px_ = std::max(6, rows > 4 ? text_px_ * 5 / 8 : text_px_);
    const int height = line + rows * row_px_ + line + margin;
    place_ = {0, screen_.bottom() - height, screen_.w, height};
    const int names = screen_.w / kNames_share;
    bars_ = {names, place_.y + line, screen_.w - names - 2 * margin, rows * row_px_};
}

int64_t TimeLine::shown_span_us() const
{
    return kSpans[span_].span_us;
}

int64_t TimeLine::step_us() const
{
    return kSpans[span_].step_us;
}

/*
 * The shown part moves by half its length at a time, so that the time line mostly stands still while playback
 * runs.
 */
TimeSpan TimeLine::shown() const
{
    const int64_t span_us = shown_span_us(), half_us = span_us / 2;
    const int64_t from_us = (state_.position_us / half_us) * half_us - half_us / 2;
    return {from_us, from_us + span_us};
}

int TimeLine::x_of(int64_t position_us) const
{
    const TimeSpan part = shown();
    const double share =
        static_cast<double>(position_us - part.from_us) / static_cast<double>(part.to_us - part.from_us);
    return bars_.x + static_cast<int>(std::clamp(share, 0.0, 1.0) * bars_.w);
}

std::optional<int64_t> TimeLine::time_at(int x, int y) const
{
    if (!bars_.contains(x, y)) return std::nullopt;
    const TimeSpan part = shown();
    const int64_t at_us = part.from_us + (part.to_us - part.from_us) * (x - bars_.x) / bars_.w;
    return std::max<int64_t>(0, at_us);
}

std::string TimeLine::clock(int64_t position_us, bool with_date) const
{
    if (!state_.base_us) return duration_text(std::max<int64_t>(0, position_us));
    const std::string text = time_text(*state_.base_us + position_us); /* "2026-11-21 14:05:00 +0100" */
    return with_date ? text.substr(0, 19) : text.substr(11, 5);
}

std::string TimeLine::heading() const
{
    return time_line_heading(state_, clock(state_.position_us, true), language_);
}

Rect TimeLine::set(const TimeLineState &state)
{
    const bool other_rows = state.rows != state_.rows;
    const Rect before = place_;
    state_ = state;
    if (other_rows) lay();
    const bool same = !other_rows && heading() == painted_heading_ &&
                      x_of(state_.position_us) == painted_x_ && shown() == painted_shown_;
    return same ? Rect{} : around(before, place_);
}

Rect TimeLine::step_span(int steps)
{
    const int last = static_cast<int>(std::size(kSpans)) - 1;
    const auto wanted = static_cast<size_t>(std::clamp(static_cast<int>(span_) + steps, 0, last));
    if (wanted == span_) return {};
    span_ = wanted;
    return place_;
}

Tile TimeLine::label(const std::string &text, int most_px) const
{
    if (!font_ || text.empty()) return {};
    return flat(font_->render(units_of(text, ChineseScript::kAsTyped), text_px_ * 3 / 4, most_px),
                kLineLetters, kLineGround);
}

void TimeLine::paint(Canvas &canvas)
{
    canvas.fill(place_, kLineGround);
    painted_heading_ = heading();
    painted_x_ = x_of(state_.position_us);
    painted_shown_ = shown();
    const int margin = text_px_ / 2;
    const int line = bars_.y - place_.y;
    canvas.draw(label(painted_heading_, screen_.w - 2 * margin), margin, place_.y + margin / 4);
    for (size_t row = 0; row < std::max<size_t>(1, state_.rows.size()); ++row) {
        const int y = bars_.y + static_cast<int>(row) * row_px_;
        canvas.fill({bars_.x, y + 1, bars_.w, row_px_ - 2}, kLineTrough);
        if (row >= state_.rows.size()) break;
        const TimeLineRow &shown_row = state_.rows[row];
        if (font_ && !shown_row.name.empty()) {
            const Tile name = flat(font_->render(units_of(shown_row.name, ChineseScript::kAsTyped),
                                                 std::max(8, row_px_ * 3 / 4), bars_.x - 2 * margin),
                                   kLineQuiet, kLineGround);
            canvas.draw(name, margin, y + (row_px_ - name.height) / 2);
        }
        for (const TimeSpan &span : shown_row.recorded) {
            if (span.to_us <= painted_shown_.from_us || span.from_us >= painted_shown_.to_us) continue;
            const int from = x_of(span.from_us);
            canvas.fill({from, y + 1, std::max(1, x_of(span.to_us) - from), row_px_ - 2}, kLineRecorded);
        }
    }
    const int64_t span_us = painted_shown_.to_us - painted_shown_.from_us;
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const int64_t at_us = painted_shown_.from_us + span_us * quarter / 4;
        if (at_us < 0) continue;
        const Tile tick = label(clock(at_us, false), line * 6);
        const int x = std::min(x_of(at_us) - tick.width / 2, screen_.right() - tick.width);
        canvas.draw(tick, std::max(0, x), bars_.bottom() + margin / 4);
    }
    canvas.fill({painted_x_ - 1, bars_.y - 2, 3, bars_.h + 4}, kLineNow);
}

} // namespace nvrec
