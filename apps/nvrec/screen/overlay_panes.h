/*
 * overlay_panes.h - what stands in the panes: their borders, the selected one's highlight, the
 * cameras' names, and a line where a camera gives no picture.
 */
#pragma once

#include <map>
#include <string>
#include <vector>

#include "nvrhal.h"
#include "screen/canvas.h"
#include "screen/clock_face.h"
#include "screen/font.h"
#include "screen/glyphs.h"

namespace nvrec
{

constexpr int kBorder_px = 2;    /* inside every pane, so twice that between two */
constexpr int kHighlight_px = 4; /* the selected pane's                          */
constexpr Colour kBorderColour = 0x202428;
constexpr Colour kHighlightColour = 0x2090F8;

/** Names as the user gave them; a camera without one is called by its number, counted from 1. */
struct CameraNames {
    std::map<int, std::string> given; /* by channel */
    Language language = Language::kEnglish;
    ChineseScript script = ChineseScript::kAsTyped;

    std::u16string of(int channel) const;
};

class PaneMarks
{
public:
    /** @param font  null = no names */
    PaneMarks(Font *font, CameraNames names) : font_(font), names_(std::move(names)) {}

    /** Stand in these panes from now on. @return true when they are others than before. */
    bool lay(const std::vector<DispAttrib> &panes);

    /** Highlight that channel. @return what has to be painted anew. */
    std::vector<Rect> select(int channel);

    /** Whether the channel has a picture. @return what has to be painted anew. */
    Rect set_live(int channel, bool live);

    void paint(Canvas &canvas) const;

    /** Where a channel is shown, and its name there; empty = nowhere. */
    Rect pane_of(int channel) const;
    Rect name_of(int channel) const;

private:
    struct Pane {
        int channel;
        Rect area;
        Tile name;
        Rect name_place;
        Tile notice; /* in the middle, while the camera gives no picture */
        Rect notice_place;
        bool live = true;
        bool operator==(const Pane &other) const { return channel == other.channel && area == other.area; }
    };

    Pane make_pane(const DispAttrib &from);
    const Pane *find(int channel) const;
    bool has_borders() const { return panes_.size() > 1; }

    Font *const font_;
    const CameraNames names_;
    std::vector<Pane> panes_;
    std::map<int, bool> live_;
    int selected_ = 0;
};

} // namespace nvrec
