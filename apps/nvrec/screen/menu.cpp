/* menu.cpp - see menu.h. */
#include "screen/menu.h"

#include <algorithm>
#include <iterator>

namespace nvrec
{
namespace
{

constexpr Colour kGround = 0x1C222A, kTitleGround = 0x2A323C, kEdge = 0x4A5460;
constexpr Colour kLitGround = 0x1868C0, kMenuLetters = 0xE4E8EC, kLitLetters = 0xFFFFFF, kMark = 0x48C078;

/* The rows below those of the layouts, which come from the table of layouts. */
struct Row {
    MenuAction action;
    const char *texts[2]; /* by Language */
};

constexpr Row kRows[] = {
    {MenuAction::kEnlarge, {"Selected camera alone", "放大所选通道"}},
    {MenuAction::kZoom, {"Digital zoom", "电子放大"}},
    {MenuAction::kAddress, {"QR code", "二维码"}},
    {MenuAction::kQuit, {"Quit", "退出"}},
};
constexpr const char *kTitles[2] = {"Menu", "菜单"};

/* A gap below the layouts, and one above the last row, which quits. */
constexpr bool begins_a_group(MenuAction action)
{
    return action == MenuAction::kEnlarge || action == MenuAction::kQuit;
}

} // namespace

Menu::Menu(Font &font, Language language, ChineseScript script, int text_size_px, bool has_address)
{
    constexpr int kWidest_px = 700;
    const int in = static_cast<int>(language);
    auto mask = [&](const char *text) {
        return font.render(units_of(text, script), text_size_px, kWidest_px);
    };
    title_ = flat(mask(kTitles[in]), kLitLetters, kTitleGround);
    int widest = title_.width;
    auto add = [&](MenuAction action, Layout layout, const char *text) {
        const Mask letters = mask(text);
        items_.push_back(
            {action, layout, flat(letters, kLitLetters, kLitGround), flat(letters, kMenuLetters, kGround)});
        widest = std::max(widest, letters.width);
    };
    for (const LayoutRow &row : layouts())
        add(MenuAction::kLayout, row.layout, row.texts[in]);
    for (const Row &row : kRows) {
        if (row.action == MenuAction::kAddress && !has_address) continue;
        add(row.action, {}, row.texts[in]);
    }
    row_px_ = (title_.height + text_size_px / 2) & ~1;
    width_px_ = (widest + row_px_ * 4 + 1) & ~1;
}

void Menu::open(const Rect &screen, const MenuState &state)
{
    const int height = row_px_ * static_cast<int>(items_.size() + 1);
    open_at(screen, state, screen.x + (screen.w - width_px_) / 2, screen.y + (screen.h - height) / 2);
}

void Menu::open_at(const Rect &screen, const MenuState &state, int x, int y)
{
    const int height = row_px_ * static_cast<int>(items_.size() + 1);
    place_ = {std::clamp(x, screen.x, std::max(screen.x, screen.right() - width_px_)),
              std::clamp(y, screen.y, std::max(screen.y, screen.bottom() - height)), width_px_, height};
    state_ = state;
    open_ = true;
    lit_ = 0;
    for (size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].action == MenuAction::kLayout && items_[i].layout == state.layout) lit_ = i;
    }
}

Rect Menu::row(size_t index) const
{
    return {place_.x, place_.y + row_px_ * static_cast<int>(index + 1), place_.w, row_px_};
}

Rect Menu::light(size_t index)
{
    if (index == lit_) return {};
    const Rect before = row(lit_);
    lit_ = index;
    return around(before, row(lit_));
}

Rect Menu::step(int by)
{
    const int count = static_cast<int>(items_.size());
    return light(static_cast<size_t>((static_cast<int>(lit_) + by % count + count) % count));
}

bool Menu::is_on_row(int x, int y) const
{
    return open_ && place_.contains(x, y) && y >= place_.y + row_px_;
}

Rect Menu::point_at(int x, int y)
{
    if (!is_on_row(x, y)) return {};
    return light(std::min(static_cast<size_t>((y - place_.y) / row_px_ - 1), items_.size() - 1));
}

bool Menu::is_marked(const Item &item) const
{
    switch (item.action) {
    case MenuAction::kLayout: return !state_.enlarged && item.layout == state_.layout;
    case MenuAction::kEnlarge: return state_.enlarged;
    case MenuAction::kAddress: return state_.address_shown;
    default: return false;
    }
}

/* A small picture of a layout's panes. */
void Menu::paint_icon(Canvas &canvas, const Item &item, const Rect &place, Colour colour) const
{
    if (item.action != MenuAction::kLayout) return;
    for (const DispAttrib &pane : make_panes(item.layout, place.w, place.h, pane_count(item.layout)))
        canvas.fill({place.x + pane.x, place.y + pane.y, pane.w - 2, pane.h - 2}, colour);
}

void Menu::paint(Canvas &canvas) const
{
    if (!open_) return;
    const int indent = row_px_ * 5 / 2;
    auto middle = [&](const Rect &row, int height) { return row.y + (row.h - height) / 2; };

    canvas.fill(place_, kGround);
    const Rect title = {place_.x, place_.y, place_.w, row_px_};
    canvas.fill(title, kTitleGround);
    canvas.draw(title_, place_.x + row_px_ / 2, middle(title, title_.height));
    for (size_t i = 0; i < items_.size(); ++i) {
        const Item &item = items_[i];
        const Rect line = row(i);
        const bool lit = i == lit_;
        if (lit) canvas.fill(line, kLitGround);
        if (begins_a_group(item.action)) canvas.fill({line.x, line.y, line.w, 1}, kEdge);
        const int icon_h = (row_px_ * 5 / 8) & ~1, icon_w = (icon_h * 16 / 10) & ~1;
        paint_icon(canvas, item, {line.x + row_px_ / 2, middle(line, icon_h), icon_w, icon_h},
                   lit ? kLitLetters : kMenuLetters);
        const Tile &text = lit ? item.lit : item.unlit;
        canvas.draw(text, line.x + indent, middle(line, text.height));
        const int mark = row_px_ / 4;
        if (is_marked(item))
            canvas.fill({line.right() - row_px_ / 2 - mark, middle(line, mark), mark, mark}, kMark);
    }
    canvas.frame(place_, 2, kEdge);
}

} // namespace nvrec
