/* layout_state.h - layout marks that zoom shares with the layouts. UI thread. */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

constexpr int32_t kSparePaneMarks = 17;

/** One mark for each live channel without a pane on the secondary output. Nothing reads them. */
extern uint32_t spare_pane_marks[kSparePaneMarks];

/** Saved layouts of devices -1 to 2; old_global_bindarg names the last three. */
extern "C" __attribute__((visibility("hidden"))) BindArgs nvrhal_saved_layouts[4];

/** Forget every saved layout, device -1's included. */
void clear_saved_layouts();

/** The rectangle of a pane, every value rounded down to even. */
PaneRect even_rect(const DispAttrib &pane);

} // namespace nvrhal
