/* overlay_panes.cpp - see overlay_panes.h. */
#include "screen/overlay_panes.h"

#include <algorithm>
#include <utility>

#include "screen/pane_icons.h"
#include "screen/pane_texts.h"

namespace nvrec
{
namespace
{

constexpr Colour kNameColour = 0xFFFFFF;
constexpr Colour kTitleColour = 0xF0F4F8;
constexpr Colour kNoticeColour = 0xC8D0D8;

/* In proportion to the pane, but large enough to read and small enough to cover little. */
int text_size_in(const Rect &pane)
{
    constexpr int kPaneToText = 20, kSmallest_px = 16, kLargest_px = 28;
    return std::clamp(pane.h / kPaneToText, kSmallest_px, kLargest_px);
}

int title_size_in(const Rect &pane)
{
    constexpr int kPaneToTitle = 8, kSmallest_px = 20, kLargest_px = 96;
    return std::clamp(pane.h / kPaneToTitle, kSmallest_px, kLargest_px);
}

int rim_of(int size_px)
{
    return size_px >= 24 ? 2 : 1;
}

bool same_pane(const Rect &area, const DispAttrib &wanted)
{
    return area == Rect{wanted.x, wanted.y, wanted.w, wanted.h};
}

} // namespace

PaneMarks::Placed PaneMarks::in_the_middle(const Pane &pane, const std::string &text, int size_px, int top,
                                           Colour colour) const
{
    if (text.empty()) return {};
    const int rim = rim_of(size_px);
    Placed placed;
    placed.tile =
        rimmed(font_->render(units_of(text, names_.script), size_px, pane.area.w - size_px), colour, rim);
    placed.place = {pane.area.x + (pane.area.w - placed.tile.width) / 2, top, placed.tile.width,
                    placed.tile.height};
    return placed;
}

/* Notice and signs of a pane, made anew from its state. */
void PaneMarks::word(Pane &pane, std::time_t now) const
{
    pane.worded_at = now;
    pane.title = pane.line = pane.signs = {};
    const int size = text_size_in(pane.area), margin = size / 2;
    pane.signs.tile = icons_of(pane.state, size * 3 / 4);
    if (pane.signs.tile.width > 0)
        pane.signs.place = {pane.area.right() - margin - pane.signs.tile.width,
                            pane.area.bottom() - margin - pane.signs.tile.height, pane.signs.tile.width,
                            pane.signs.tile.height};
    if (!font_ || pane.state.notice == PaneNotice::kNone) return;
    const NoticeText text = notice_text(pane.state, names_.text_of(pane.channel), now, names_.language);
    const int title_size = title_size_in(pane.area);
    const int title_height = text.title.empty() ? 0 : font_->line_height(title_size);
    const int line_height = text.line.empty() ? 0 : font_->line_height(size);
    const int top = pane.area.y + (pane.area.h - title_height - line_height) / 2;
    pane.title = in_the_middle(pane, text.title, title_size, top, kTitleColour);
    pane.line = in_the_middle(pane, text.line, size, top + title_height, kNoticeColour);
}

PaneMarks::Pane PaneMarks::make_pane(int channel, const Rect &area)
{
    Pane pane = {channel, area, {}, {}, {}, {}, {}, 0};
    const auto known = states_.find(pane.channel);
    if (known != states_.end()) pane.state = known->second;
    word(pane, now_);
    if (!font_) return pane;

    const int size = text_size_in(pane.area), margin = size / 2;
    const int most = pane.area.w - 2 * margin;
    pane.name.tile = rimmed(font_->render(names_.of(pane.channel), size, most), kNameColour, rim_of(size));
    pane.name.place = {pane.area.x + margin, pane.area.bottom() - margin - pane.name.tile.height,
                       pane.name.tile.width, pane.name.tile.height};
    return pane;
}

bool PaneMarks::lay(const std::vector<DispAttrib> &panes, const std::vector<DispAttrib> &unused)
{
    const bool same = std::equal(panes_.begin(), panes_.end(), panes.begin(), panes.end(),
                                 [](const Pane &pane, const DispAttrib &wanted) {
                                     return pane.channel == wanted.channel && same_pane(pane.area, wanted);
                                 }) &&
                      std::equal(unused_.begin(), unused_.end(), unused.begin(), unused.end(), same_pane);
    if (same) return false;
    panes_.clear();
    for (const DispAttrib &pane : panes)
        panes_.push_back(make_pane(pane.channel, {pane.x, pane.y, pane.w, pane.h}));
    unused_.clear();
    for (const DispAttrib &pane : unused)
        unused_.push_back({pane.x, pane.y, pane.w, pane.h});
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

/*
 * What has to be painted anew: the whole pane when the dark pattern appears or disappears, else the texts and
 * signs that change. They change with the state, and at midnight, when a time gets its date.
 */
Rect PaneMarks::set_state(int channel, const PaneState &state, std::time_t now)
{
    now_ = now;
    states_[channel] = state;
    Rect damaged;
    for (Pane &pane : panes_) {
        const bool holds = pane.state == state && (state.since == 0 || same_day(pane.worded_at, now));
        if (pane.channel != channel || holds) continue;
        const bool veils = is_veiled(pane.state.notice) != is_veiled(state.notice);
        auto texts = [&pane] { return around(around(pane.title.place, pane.line.place), pane.signs.place); };
        const Rect before = texts();
        pane.state = state;
        word(pane, now);
        damaged = around(damaged, veils ? pane.area : around(before, texts()));
    }
    return damaged;
}

void PaneMarks::paint_pane(Canvas &canvas, const Pane &pane) const
{
    if (is_veiled(pane.state.notice)) canvas.veil(pane.area);
    const bool selected = pane.channel == selected_;
    if (has_borders())
        canvas.frame(pane.area, selected ? kHighlight_px : kBorder_px,
                     selected ? kHighlightColour : kBorderColour);
    for (const Placed *placed : {&pane.name, &pane.signs, &pane.title, &pane.line})
        canvas.draw(placed->tile, placed->place.x, placed->place.y);
}

void PaneMarks::paint_unused(Canvas &canvas, const Rect &area) const
{
    constexpr int kPaneToMark = 8;
    canvas.fill(area, kUnusedGround);
    canvas.frame(area, kBorder_px, kBorderColour);
    const Tile mark = unused_mark(area.h / kPaneToMark);
    canvas.draw(mark, area.x + (area.w - mark.width) / 2, area.y + (area.h - mark.height) / 2);
}

Rect PaneMarks::name_camera(int channel, const std::string &name)
{
    names_.name(channel, name);
    for (Pane &pane : panes_) {
        if (pane.channel != channel) continue;
        pane = make_pane(channel, Rect(pane.area));
        return pane.area; /* its texts may have other lengths now */
    }
    return {};
}

void PaneMarks::paint(Canvas &canvas) const
{
    for (const Rect &area : unused_)
        paint_unused(canvas, area);
    for (const Pane &pane : panes_)
        paint_pane(canvas, pane);
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
    return pane ? pane->name.place : Rect{};
}

Rect PaneMarks::notice_of(int channel) const
{
    const Pane *pane = find(channel);
    return pane ? around(pane->title.place, pane->line.place) : Rect{};
}

Rect PaneMarks::signs_of(int channel) const
{
    const Pane *pane = find(channel);
    return pane ? pane->signs.place : Rect{};
}

} // namespace nvrec
