/* layout_state.h - layout marks, rectangles and windows that zoom shares with the layouts. UI thread. */
#pragma once

#include <cstdint>

#include "mi_disp.h"
#include "nvrhal.h"

namespace nvrhal
{

constexpr int32_t kSparePaneMarks = NVRHAL_MAX_DECODERS; // a channel each, the spare decoder's too

/**
 * Marks of the secondary output: as many as live channels have no pane there, from the first one on,
 * and those of the channels that zoom has placed. Nothing reads them.
 */
extern uint32_t spare_pane_marks[kSparePaneMarks];

/**
 * Saved layouts of devices -1 to 2. The exported symbol old_global_bindarg is the array `named`, which
 * stands on a multiple of 16 bytes: compilers for amd64 take that for granted of every array so large,
 * and let applications copy it 16 bytes at a time.
 */
struct SavedLayouts {
    alignas(16) uint8_t unused[8];
    BindArgs before_first; /* the record of device -1 */
    BindArgs named[3];
};
extern "C" __attribute__((visibility("hidden"))) SavedLayouts nvrhal_saved_layouts;

/** Forget every saved layout, device -1's included. */
void clear_saved_layouts();

/** The rectangle of a pane, every value rounded down to even. */
PaneRect even_rect(const DispAttrib &pane);

/** The window of a rectangle as it stands, nothing rounded. */
MI_Rect window_of(const PaneRect &rect);

} // namespace nvrhal
