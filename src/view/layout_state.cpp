/*
 * Saved layouts, which the library writes under global_bindargLock and never reads back, and marks of
 * the UI thread.
 */
#include "view/layout_state.h"

#include <cstddef>

#include "core/abi.h"
#include "core/output_timing.h"

ABI_SIZE(DispAttrib, 16);
ABI_AT(DispAttrib, channel, 2);
ABI_AT(DispAttrib, x, 4);
ABI_AT(DispAttrib, w, 8);
ABI_SIZE(BindArgs, 136);
ABI_AT(BindArgs, vo_dev, 64);
ABI_AT(BindArgs, chn_num, 68);
ABI_AT(BindArgs, bind_status, 72);

BindArgs global_bindarg;
pthread_mutex_t global_bindargLock = PTHREAD_MUTEX_INITIALIZER;
uint32_t nvrhal::spare_pane_marks[nvrhal::kSparePaneMarks];

void nvrhal::clear_saved_layouts()
{
    nvrhal_saved_layouts.before_first = {};
    for (BindArgs &record : old_global_bindarg)
        record = {};
}

PaneRect nvrhal::even_rect(const DispAttrib &pane)
{
    return {even(pane.x), even(pane.y), even(pane.w), even(pane.h)};
}

MI_Rect nvrhal::window_of(const PaneRect &rect)
{
    return {static_cast<uint16_t>(rect.x), static_cast<uint16_t>(rect.y), static_cast<uint16_t>(rect.w),
            static_cast<uint16_t>(rect.h)};
}

// Device numbers index old_global_bindarg from -1 to 2, so the secondary output's record stands
// directly before the symbol. C++ cannot name the middle of an object; the assembler can.
nvrhal::SavedLayouts nvrhal::nvrhal_saved_layouts;
__asm__(".globl old_global_bindarg\n"
        ".type old_global_bindarg, %object\n"
        ".set old_global_bindarg, nvrhal_saved_layouts + 144\n"
        ".size old_global_bindarg, 408\n");
static_assert(offsetof(nvrhal::SavedLayouts, named) == 144 && sizeof(BindArgs[3]) == 408);
