/*
 * pane_icons.h - the small signs of a pane: something records it, it is heard, something moves in it,
 * its analog input has no signal; and the quiet mark of a pane that nobody uses.
 */
#pragma once

#include "screen/canvas.h"
#include "screen/pane_state.h"

namespace nvrec
{

/** The signs of a state, next to each other, empty where there are none. @param size_px  of one sign */
Tile icons_of(const PaneState &state, int size_px);

/** A dim camera. */
Tile unused_mark(int size_px);

} // namespace nvrec
