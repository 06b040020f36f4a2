/*
 * time_line.h - the time line at the lower edge of the screen while recordings play: what is recorded of
 * every camera, where playback is, how fast it runs, and whether it is paused.
 *
 *   Playing 2x          2026-11-21 14:05:00
 *   yard  ======    ==|=========
 *   gate  ============|====
 *   13:30           14:00          14:30
 *
 * It shows a part of the time, which moves on in steps when the position comes near its end.
 *
 * Threads: main thread.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/index.h"
#include "screen/canvas.h"
#include "screen/clock_face.h"
#include "screen/font.h"

namespace nvrec
{

struct TimeLineRow {
    std::string name;
    std::vector<TimeSpan> recorded; /* places */
    bool operator==(const TimeLineRow &) const = default;
};

/** What it shows. Times are places: microseconds from the beginning of the recordings that are played. */
struct TimeLineState {
    std::vector<TimeLineRow> rows;
    int64_t position_us = 0;
    std::optional<int64_t> base_us; /* time of day of place 0; nothing = places are shown */
    double speed = 1;
    bool paused = false;
    bool in_gap = false; /* nothing is recorded at the position */
};

class TimeLine
{
public:
    /** @param font  null = no text */
    TimeLine(Font *font, const Rect &screen, int text_px, Language language = Language::kEnglish);

    /** @return what has to be painted anew; empty = it looks as before. */
    Rect set(const TimeLineState &state);

    /** Show a longer part of the time (above 0) or a shorter one. @return what has to be painted anew. */
    Rect step_span(int steps);
    int64_t shown_span_us() const;

    /** A step of the position that is large enough to be seen at the present length of the time line. */
    int64_t step_us() const;

    void paint(Canvas &canvas);
    Rect place() const { return place_; }

    /** The place of playback at a point of the bars; nothing = the point is not on the bars. */
    std::optional<int64_t> time_at(int x, int y) const;

    /** Where a place is on the screen. */
    int x_of(int64_t position_us) const;

private:
    void lay();
    Tile label(const std::string &text, int most_px) const;
    std::string clock(int64_t position_us, bool with_date) const;
    std::string heading() const;
    TimeSpan shown() const;

    Font *const font_;
    const Rect screen_;
    const int text_px_;
    const Language language_;
    TimeLineState state_;
    size_t span_ = 2; /* of the table of spans */
    Rect place_;      /* all of it             */
    Rect bars_;       /* the rows without their names */
    int row_px_ = 0;
    std::string painted_heading_;
    int painted_x_ = -1;
    TimeSpan painted_shown_;
};

} // namespace nvrec
