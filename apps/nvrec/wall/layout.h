/*
 * layout.h - named layouts of the screen, as panes for ext_change_display_format.
 *
 * The library takes any rectangles and rounds them down to even numbers. The panes computed here
 * are even to begin with and fill the output without gap or overlap: a grid line k of n lies at the
 * even number at or below size * k / n, and a pane reaches from its line to the next.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "nvrhal.h"

namespace nvrec
{

enum class Layout {
    kSingle,     /* "1"   */
    kGrid2,      /* "2x2" */
    kGrid3,      /* "3x3" */
    kGrid4,      /* "4x4" */
    kOneAndFive, /* "1+5": a large pane of 2/3 of the screen, five around its right and bottom */
    kOneAndSeven /* "1+7": a large pane of 3/4, seven around                                   */
};

/** What is known of a layout: for its panes, the command line, the layout key and the menu. */
struct LayoutRow {
    std::string_view name; /* on the command line              */
    Layout layout;
    int side;             /* cells across and down            */
    int large_side;       /* cells of the first pane's side   */
    int key_turn;         /* in the order of the layout key, from 1; 0 = it is not among them */
    const char *texts[2]; /* in the menu: English, Chinese    */
};

/** All layouts, in the order of the menu and of the help. */
std::span<const LayoutRow> layouts();

/** The layout of that name, or nothing. */
std::optional<Layout> layout_named(std::string_view name);

/** Names of all layouts, as a user types them. */
std::vector<std::string> layout_names();

/** The smallest grid with a pane for each of `channels` cameras (1 to 16). */
Layout layout_for(int channels);

/** The layout that the layout key shows next, for so many cameras; the same one when there is no other. */
Layout layout_after(Layout layout, int cameras);

/** How many panes the layout has. */
int pane_count(Layout layout);

/**
 * The layout's panes on an output of that size (even numbers, pixels): pane i shows channel i.
 * With fewer channels than panes the last panes are left out, since the library takes at most as
 * many panes as it has cameras.
 */
std::vector<DispAttrib> make_panes(Layout layout, int width_px, int height_px, int channels);

/** The channel whose pane holds that point of the output, -1 = none. */
int channel_at(const std::vector<DispAttrib> &panes, int x, int y);

} // namespace nvrec
