/* clock_face.cpp - see clock_face.h. */
#include "screen/clock_face.h"

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

} // namespace

std::string clock_text(std::time_t time, Language language)
{
    std::tm local = {};
    localtime_r(&time, &local);
    char date[32], clock[16];
    std::strftime(date, sizeof date, "%Y-%m-%d", &local);
    std::strftime(clock, sizeof clock, "%H:%M:%S", &local);
    return std::string(date) + "  " + kDays[static_cast<int>(language)][local.tm_wday] + "  " + clock;
}

Rect ClockFace::set(Time time, const Rect &screen)
{
    const std::time_t second =
        std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    if (second == shown_) return {};
    shown_ = second;
    const int rim = size_px_ / 12;
    const int margin = size_px_ * 3 / 4;
    tile_ = rimmed(
        font_.render(units_of(clock_text(second, language_), ChineseScript::kAsTyped), size_px_, screen.w),
        kLetters, rim);
    const Rect before = place_;
    place_ = {screen.right() - margin - tile_.width, screen.y + margin, tile_.width, tile_.height};
    return around(before, place_);
}

std::chrono::nanoseconds ClockFace::until_next(Time time)
{
    return std::chrono::floor<std::chrono::seconds>(time) + std::chrono::seconds(1) - time;
}

} // namespace nvrec
