/*
 * clock_face.h - date and time on the screen, to the second: where no picture is, in one line or two,
 * and in the upper right corner where pictures are everywhere.
 *
 * The tile is made once a second at most. It keeps its place and its largest width so far, so that each
 * second damages only one rectangle.
 */
#pragma once

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include "screen/canvas.h"
#include "screen/font.h"

namespace nvrec
{

enum class Language { kEnglish, kChinese };

/** "2026-03-01  Sun  08:05:09" in local time. */
std::string clock_text(std::time_t time, Language language);

class ClockFace
{
public:
    using Time = std::chrono::system_clock::time_point;

    ClockFace(Font &font, Language language, int size_px)
        : font_(font), language_(language), size_px_(size_px)
    {
    }

    /** Show that time from now on. @return what has to be painted anew; empty = the same second. */
    Rect set(Time time, const Rect &screen);

    /** Offer places without a picture. The first that is large enough is taken; empty ones are left out. */
    void offer(const std::vector<Rect> &free) { free_ = free; }

    void paint(Canvas &canvas) const { canvas.draw(tile_, place_.x, place_.y); }
    const Rect &place() const { return place_; }

    /** From `time` to the next tick. */
    static std::chrono::nanoseconds until_next(Time time);

private:
    Font &font_;
    const Language language_;
    const int size_px_;
    std::time_t shown_ = -1;
    struct Line {
        Mask date, time, both;
    };
    Tile two_lines(const Line &line, int rim) const;
    void put(const Line &line, const Rect &screen);

    std::vector<Rect> free_;
    std::vector<Rect> offered_; /* when the tile was made */
    Tile tile_;
    Rect place_;
};

} // namespace nvrec
