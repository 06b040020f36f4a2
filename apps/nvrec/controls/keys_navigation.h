/*
 * keys_navigation.h - keys and mouse on the bare wall, when no menu takes them.
 *
 *   arrows              select a pane; with one camera on the whole screen, left and right change it
 *   1 to 9, 0           that camera on the whole screen, 0 = the tenth; the same again = the layout
 *   enter               the selected camera on the whole screen, and back
 *   back                the layout
 *   layout              the next layout that is worth having for so many cameras
 *   left button         select the pane; twice = on the whole screen, and back
 *   right button        the layout
 */
#pragma once

#include "wall/double_click.h"
#include "wall/module.h"

namespace nvrec
{

class Navigation final : public Module
{
public:
    bool start(WallControl &wall) override;
    InputLayer input_layer() const override { return InputLayer::kWall; }
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;

private:
    bool choose(int channel);
    bool move(int dx, int dy);
    bool next_layout();

    WallControl *wall_ = nullptr;
    DoubleClick clicks_;
};

/**
 * The channel of the pane next to that channel's in a direction (-1, 0 or 1 each).
 * @return the channel itself when there is none; the first pane's when the channel has no pane
 */
int neighbour(const std::vector<DispAttrib> &panes, int channel, int dx, int dy);

} // namespace nvrec
