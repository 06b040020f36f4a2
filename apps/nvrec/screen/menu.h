/*
 * menu.h - the recorder's menu: a panel of rows, one of them highlighted. The menu knows its rows and draws
 * them; the overlay carries out what is chosen.
 */
#pragma once

#include <string>
#include <vector>

#include "screen/canvas.h"
#include "screen/clock_face.h"
#include "screen/font.h"
#include "screen/glyphs.h"
#include "wall/layout.h"

namespace nvrec
{

enum class MenuAction { kLayout, kEnlarge, kZoom, kAddress, kQuit };

/** The state of the wall, which the menu marks in its rows. */
struct MenuState {
    Layout layout = Layout::kSingle;
    bool enlarged = false;
    bool address_shown = false;
};

class Menu
{
public:
    struct Item {
        MenuAction action;
        Layout layout; /* of kLayout */
        Tile lit, unlit;
    };

    /** @param has_address  there is a QR code to show */
    Menu(Font &font, Language language, ChineseScript script, int text_size_px, bool has_address);

    /** Open in the middle of the screen, or with a corner at a place, as near to it as the panel fits. */
    void open(const Rect &screen, const MenuState &state);
    void open_at(const Rect &screen, const MenuState &state, int x, int y);
    void close() { open_ = false; }
    bool is_open() const { return open_; }

    /** Its place, and that of one of its rows. */
    const Rect &place() const { return place_; }
    Rect row(size_t index) const;

    /**
     * Highlight the next row up or down, going round at the ends, or the row at a place. @return what to
     * paint anew.
     */
    Rect step(int by);
    Rect point_at(int x, int y);

    /** The highlighted row, and whether a place lies on it. */
    const Item &chosen() const { return items_[lit_]; }
    size_t chosen_index() const { return lit_; }
    bool is_on_row(int x, int y) const;
    const std::vector<Item> &items() const { return items_; }

    void paint(Canvas &canvas) const;

private:
    bool is_marked(const Item &item) const;
    void paint_icon(Canvas &canvas, const Item &item, const Rect &place, Colour colour) const;
    Rect light(size_t index);

    Tile title_;
    std::vector<Item> items_;
    int row_px_ = 0;   /* height of a row and of the title */
    int width_px_ = 0; /* of the panel                     */

    bool open_ = false;
    Rect place_;
    MenuState state_;
    size_t lit_ = 0;
};

} // namespace nvrec
