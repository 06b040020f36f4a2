/*
 * pane_icons.h - the small signs of a pane: its camera is recorded, is heard, sees motion, or has no signal
 * at its analog input; and the dim mark of an unused pane.
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
