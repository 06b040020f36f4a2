/*
 * overlay_panes.h - draws in the panes: their borders, the selected one's highlight, the cameras' names and
 * signs, the notice of a camera without pictures, and a mark where no camera is.
 */
#pragma once

#include <map>
#include <string>
#include <vector>

#include "nvrhal.h"
#include "screen/camera_names.h"
#include "screen/canvas.h"
#include "screen/font.h"
#include "screen/pane_state.h"

namespace nvrec
{

constexpr int kBorder_px = 2;    /* inside every pane, so twice that between two */
constexpr int kHighlight_px = 4; /* the selected pane's                          */
constexpr Colour kBorderColour = 0x202428;
constexpr Colour kHighlightColour = 0x2090F8;
constexpr Colour kUnusedGround = 0x101418; /* of a pane that has no camera */

class PaneMarks
{
public:
    /** @param font  null = no names */
    PaneMarks(Font *font, CameraNames names) : font_(font), names_(std::move(names)) {}

    /** Use these panes from now on. @return true = they differ from those before. */
    bool lay(const std::vector<DispAttrib> &panes, const std::vector<DispAttrib> &unused);

    /** Highlight that channel. @return what has to be painted anew. */
    std::vector<Rect> select(int channel);

    /** Show the state of the channel's camera. @return what has to be painted anew. */
    Rect set_state(int channel, const PaneState &state, std::time_t now);

    /**
     * Another camera is on the channel, with this name; empty = it has none. @return what has to be painted
     * anew.
     */
    Rect name_camera(int channel, const std::string &name);

    void paint(Canvas &canvas) const;

    /** The places of a channel's pane, and of its name, notice and signs; empty = nowhere. */
    Rect pane_of(int channel) const;
    Rect name_of(int channel) const;
    Rect notice_of(int channel) const;
    Rect signs_of(int channel) const;

    /** The last pane that no camera uses; empty = all are used. */
    Rect unused_pane() const { return unused_.empty() ? Rect{} : unused_.back(); }

private:
    struct Placed {
        Tile tile;
        Rect place; /* empty = it is not there */
    };
    struct Pane {
        int channel;
        Rect area;
        Placed name, title, line, signs;
        PaneState state;
        std::time_t worded_at;
        bool operator==(const Pane &other) const { return channel == other.channel && area == other.area; }
    };

    Pane make_pane(int channel, const Rect &area);
    void word(Pane &pane, std::time_t now) const;
    void paint_pane(Canvas &canvas, const Pane &pane) const;
    void paint_unused(Canvas &canvas, const Rect &area) const;
    Placed in_the_middle(const Pane &pane, const std::string &text, int size_px, int top,
                         Colour colour) const;
    const Pane *find(int channel) const;
    bool has_borders() const { return panes_.size() + unused_.size() > 1; }

    Font *const font_;
    CameraNames names_;
    std::vector<Pane> panes_;
    std::vector<Rect> unused_;
    std::map<int, PaneState> states_;
    std::time_t now_ = 0; /* of the last state */
    int selected_ = 0;
};

} // namespace nvrec
