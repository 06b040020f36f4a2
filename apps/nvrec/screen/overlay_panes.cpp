/* overlay_panes.cpp - see overlay_panes.h. */
#include "screen/overlay_panes.h"

#include <algorithm>

namespace nvrec
{
namespace
{

constexpr Colour kNameColour = 0xFFFFFF;
constexpr Colour kNoticeColour = 0xA8B0B8;
constexpr size_t kLongestName = 64; /* units; what does not fit the pane is cut anyway */

/* In proportion to the pane, within what is readable and what covers little. */
int text_size_in(const Rect &pane)
{
    constexpr int kPaneToText = 20, kSmallest_px = 16, kLargest_px = 28;
    return std::clamp(pane.h / kPaneToText, kSmallest_px, kLargest_px);
}

int rim_of(int size_px)
{
    return size_px >= 24 ? 2 : 1;
}

} // namespace

std::u16string CameraNames::of(int channel) const
{
    const auto found = given.find(channel);
    const std::string number = std::to_string(channel + 1);
    const std::string name = found != given.end()             ? found->second
                             : language == Language::kChinese ? "通道" + number
                                                              : "Camera " + number;
    return units_of(name, script).substr(0, kLongestName);
}

PaneMarks::Pane PaneMarks::make_pane(const DispAttrib &from)
{
    Pane pane = {from.channel, {from.x, from.y, from.w, from.h}, {}, {}, {}, {}, true};
    const auto known = live_.find(pane.channel);
    if (known != live_.end()) pane.live = known->second;
    if (!font_) return pane;

    const int size = text_size_in(pane.area), margin = size / 2;
    const int most = pane.area.w - 2 * margin;
    auto text = [&](const std::u16string &units, Colour colour) {
        return rimmed(font_->render(units, size, most), colour, rim_of(size));
    };
    pane.name = text(names_.of(pane.channel), kNameColour);
    pane.name_place = {pane.area.x + margin, pane.area.bottom() - margin - pane.name.height, pane.name.width,
                       pane.name.height};
    pane.notice =
        text(units_of(names_.language == Language::kChinese ? "无视频信号" : "No video", names_.script),
             kNoticeColour);
    pane.notice_place = {pane.area.x + (pane.area.w - pane.notice.width) / 2,
                         pane.area.y + (pane.area.h - pane.notice.height) / 2, pane.notice.width,
                         pane.notice.height};
    return pane;
}

bool PaneMarks::lay(const std::vector<DispAttrib> &panes)
{
    const bool same = std::equal(panes_.begin(), panes_.end(), panes.begin(), panes.end(),
                                 [](const Pane &pane, const DispAttrib &wanted) {
                                     return pane.channel == wanted.channel &&
                                            pane.area == Rect{wanted.x, wanted.y, wanted.w, wanted.h};
                                 });
    if (same) return false;
    panes_.clear();
    for (const DispAttrib &pane : panes)
        panes_.push_back(make_pane(pane));
    return true;
}

std::vector<Rect> PaneMarks::select(int channel)
{
    std::vector<Rect> damaged;
    for (const int changed : {selected_, channel}) {
        const Rect pane = pane_of(changed);
        if (channel == selected_ || pane.empty() || !has_borders()) continue;
        constexpr int t = kHighlight_px;
        damaged.push_back({pane.x, pane.y, pane.w, t});
        damaged.push_back({pane.x, pane.bottom() - t, pane.w, t});
        damaged.push_back({pane.x, pane.y + t, t, pane.h - 2 * t});
        damaged.push_back({pane.right() - t, pane.y + t, t, pane.h - 2 * t});
    }
    selected_ = channel;
    return damaged;
}

Rect PaneMarks::set_live(int channel, bool live)
{
    live_[channel] = live;
    for (Pane &pane : panes_) {
        if (pane.channel != channel || pane.live == live) continue;
        pane.live = live;
        return pane.notice_place;
    }
    return {};
}

void PaneMarks::paint(Canvas &canvas) const
{
    for (const Pane &pane : panes_) {
        const bool selected = pane.channel == selected_;
        if (has_borders())
            canvas.frame(pane.area, selected ? kHighlight_px : kBorder_px,
                         selected ? kHighlightColour : kBorderColour);
        canvas.draw(pane.name, pane.name_place.x, pane.name_place.y);
        if (!pane.live) canvas.draw(pane.notice, pane.notice_place.x, pane.notice_place.y);
    }
}

const PaneMarks::Pane *PaneMarks::find(int channel) const
{
    for (const Pane &pane : panes_) {
        if (pane.channel == channel) return &pane;
    }
    return nullptr;
}

Rect PaneMarks::pane_of(int channel) const
{
    const Pane *pane = find(channel);
    return pane ? pane->area : Rect{};
}

Rect PaneMarks::name_of(int channel) const
{
    const Pane *pane = find(channel);
    return pane ? pane->name_place : Rect{};
}

} // namespace nvrec
