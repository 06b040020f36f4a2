/* notice_line.cpp - see notice_line.h. */
#include "screen/notice_line.h"

namespace nvrec
{
namespace
{

constexpr Colour kAlarmGround = 0xC01820, kAlarmLetters = 0xFFFFFF, kAlarmEdge = 0xF87068;

} // namespace

Rect NoticeLine::set(const std::string &text, int most_px)
{
    if (text == text_) return {};
    text_ = text;
    const Rect before = place_;
    place_ = {};
    if (!text.empty()) {
        const int margin = size_px_ / 2;
        tile_ = flat(font_.render(units_of(text, script_), size_px_, most_px - 2 * margin), kAlarmLetters,
                     kAlarmGround);
        place_ = {margin, margin, tile_.width + 2 * margin, tile_.height + margin};
    }
    return around(before, place_);
}

void NoticeLine::paint(Canvas &canvas) const
{
    if (place_.empty()) return;
    canvas.fill(place_, kAlarmGround);
    canvas.frame(place_, 2, kAlarmEdge);
    canvas.draw(tile_, place_.x + (place_.w - tile_.width) / 2, place_.y + (place_.h - tile_.height) / 2);
}

} // namespace nvrec
