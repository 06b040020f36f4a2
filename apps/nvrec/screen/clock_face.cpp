/* clock_face.cpp - see clock_face.h. */
#include "screen/clock_face.h"

#include <algorithm>
#include <utility>

#include "screen/glyphs.h"

namespace nvrec
{
namespace
{

constexpr Colour kLetters = 0xFFFFFF;
constexpr const char *kDays[][7] = {
    {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
    {"星期日", "星期一", "星期二", "星期三", "星期四", "星期五", "星期六"},
};

std::string clock_date(std::time_t time, Language language)
{
    std::tm local = {};
    localtime_r(&time, &local);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%d", &local);
    return std::string(date) + "  " + kDays[static_cast<int>(language)][local.tm_wday];
}

std::string clock_time(std::time_t time)
{
    std::tm local = {};
    localtime_r(&time, &local);
    char clock[16];
    std::strftime(clock, sizeof clock, "%H:%M:%S", &local);
    return clock;
}

} // namespace

std::string clock_text(std::time_t time, Language language)
{
    return clock_date(time, language) + "  " + clock_time(time);
}

/* The narrower one in the middle of the wider one's width. */
Tile ClockFace::two_lines(const Line &line, int rim) const
{
    const int width = std::max(line.date.width, line.time.width);
    Mask both = {width, line.date.height + line.time.height, {}};
    both.coverage.resize(static_cast<size_t>(both.width) * static_cast<size_t>(both.height));
    int top = 0;
    for (const Mask *part : {&line.date, &line.time}) {
        for (int y = 0; y < part->height; ++y) {
            for (int x = 0; x < part->width; ++x)
                both.coverage[static_cast<size_t>(top + y) * static_cast<size_t>(width) +
                              static_cast<size_t>((width - part->width) / 2 + x)] = part->at(x, y);
        }
        top += part->height;
    }
    return rimmed(both, kLetters, rim);
}

void ClockFace::put(const Line &line, const Rect &screen)
{
    const int rim = size_px_ / 12, margin = size_px_ * 3 / 4;
    tile_ = rimmed(line.both, kLetters, rim);
    for (const Rect &area : free_) {
        const Rect inside = area.shrunk(size_px_ / 4);
        if (tile_.height > inside.h) continue;
        Tile tile = tile_.width <= inside.w ? tile_ : two_lines(line, rim);
        if (tile.width > inside.w || tile.height > inside.h) continue;
        const int y = std::min(area.y + margin, inside.bottom() - tile.height);
        place_ = {area.x + (area.w - tile.width) / 2, y, tile.width, tile.height};
        tile_ = std::move(tile);
        return;
    }
    place_ = {screen.right() - margin - tile_.width, screen.y + margin, tile_.width, tile_.height};
}

Rect ClockFace::set(Time time, const Rect &screen)
{
    const std::time_t second =
        std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    if (second == shown_ && offered_ == free_) return {};
    shown_ = second;
    offered_ = free_;
    auto mask = [&](const std::string &text) {
        return font_.render(units_of(text, ChineseScript::kAsTyped), size_px_, screen.w);
    };
    const Line line = {mask(clock_date(second, language_)), mask(clock_time(second)),
                       mask(clock_text(second, language_))};
    const Rect before = place_;
    put(line, screen);
    return around(before, place_);
}

std::chrono::nanoseconds ClockFace::until_next(Time time)
{
    return std::chrono::floor<std::chrono::seconds>(time) + std::chrono::seconds(1) - time;
}

} // namespace nvrec
