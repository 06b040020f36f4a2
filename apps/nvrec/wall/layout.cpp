/* layout.cpp - see layout.h. A layout is a grid side and the side, in cells, of its first pane. */
#include "wall/layout.h"

#include <algorithm>

namespace nvrec
{
namespace
{

constexpr uint16_t kShow = 1; /* DispAttrib::bind_status */

constexpr int kEmptiest = 2; /* panes for a camera: with more, most of the screen is black */

/* In the order of the menu and of the help. */
constexpr LayoutRow kLayouts[] = {
    {"1", Layout::kSingle, 1, 1, 0, {"Single camera", "单画面"}},
    {"2x2", Layout::kGrid2, 2, 1, 1, {"2 x 2", "四画面"}},
    {"3x3", Layout::kGrid3, 3, 1, 4, {"3 x 3", "九画面"}},
    {"4x4", Layout::kGrid4, 4, 1, 5, {"4 x 4", "十六画面"}},
    {"1+5", Layout::kOneAndFive, 3, 2, 2, {"1 + 5", "一大五小"}},
    {"1+7", Layout::kOneAndSeven, 4, 3, 3, {"1 + 7", "一大七小"}},
};

constexpr int kTurns = 5; /* of the layout key */

constexpr bool every_turn_has_a_layout()
{
    for (int turn = 1; turn <= kTurns; ++turn) {
        if (std::ranges::count(kLayouts, turn, &LayoutRow::key_turn) != 1) return false;
    }
    return true;
}
static_assert(every_turn_has_a_layout());

constexpr bool rows_are_in_order()
{
    int expected = 0;
    for (const LayoutRow &row : kLayouts) {
        if (static_cast<int>(row.layout) != expected++) return false;
    }
    return true;
}
static_assert(rows_are_in_order(), "row_of() finds a layout by its position");

const LayoutRow &row_of(Layout layout)
{
    return kLayouts[static_cast<int>(layout)];
}

int grid_line(int size_px, int line, int side)
{
    return (size_px * line / side) & ~1;
}

} // namespace

std::optional<Layout> layout_named(std::string_view name)
{
    for (const LayoutRow &row : kLayouts) {
        if (row.name == name) return row.layout;
    }
    return std::nullopt;
}

std::span<const LayoutRow> layouts()
{
    return kLayouts;
}

std::vector<std::string> layout_names()
{
    std::vector<std::string> names;
    for (const LayoutRow &row : kLayouts)
        names.emplace_back(row.name);
    return names;
}

Layout layout_for(int channels)
{
    for (const LayoutRow &row : kLayouts) {
        if (row.large_side == 1 && channels <= pane_count(row.layout)) return row.layout;
    }
    return Layout::kGrid4;
}

int pane_count(Layout layout)
{
    const LayoutRow &row = row_of(layout);
    return row.side * row.side - row.large_side * row.large_side + 1;
}

Layout layout_after(Layout layout, int cameras)
{
    const int at = row_of(layout).key_turn; /* a layout that has no turn comes before the first */
    for (int step = 1; step <= kTurns; ++step) {
        const int turn = (at + step - 1) % kTurns + 1;
        const Layout next = std::ranges::find(kLayouts, turn, &LayoutRow::key_turn)->layout;
        if (pane_count(next) <= kEmptiest * cameras) return next;
    }
    return layout;
}

std::vector<DispAttrib> make_panes(Layout layout, int width_px, int height_px, int channels)
{
    const LayoutRow &row = row_of(layout);
    std::vector<DispAttrib> panes;

    auto add = [&](int column, int line, int cells) {
        const int x = grid_line(width_px, column, row.side);
        const int y = grid_line(height_px, line, row.side);
        DispAttrib pane = {};
        pane.bind_status = kShow;
        pane.channel = static_cast<uint16_t>(panes.size());
        pane.x = static_cast<uint16_t>(x);
        pane.y = static_cast<uint16_t>(y);
        pane.w = static_cast<uint16_t>(grid_line(width_px, column + cells, row.side) - x);
        pane.h = static_cast<uint16_t>(grid_line(height_px, line + cells, row.side) - y);
        panes.push_back(pane);
    };

    add(0, 0, row.large_side);
    for (int line = 0; line < row.side; ++line) {
        for (int column = 0; column < row.side; ++column) {
            if (line < row.large_side && column < row.large_side) continue;
            add(column, line, 1);
        }
    }
    panes.resize(static_cast<size_t>(std::clamp(channels, 0, static_cast<int>(panes.size()))));
    return panes;
}

int channel_at(const std::vector<DispAttrib> &panes, int x, int y)
{
    const auto under = std::find_if(panes.begin(), panes.end(), [x, y](const DispAttrib &pane) {
        return x >= pane.x && x < pane.x + pane.w && y >= pane.y && y < pane.y + pane.h;
    });
    return under == panes.end() ? -1 : under->channel;
}

} // namespace nvrec
