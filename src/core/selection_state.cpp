/*
 * Selection state: which channels are shown, snapped, zoomed or played back.
 *
 * Written by layouts, zoom, playback and snapshots on the UI thread, or by the application; read by
 * live intake on the channel threads without a lock, word by word. The pane rectangles belong to the
 * UI thread alone.
 */
#include "core/selection_state.h"

#include "core/abi.h"

ABI_SIZE(PaneRect, 16);

uint8_t cur_display_chnn = nvrhal::kAllChannelsShown; // layouts and playback write it
int32_t cur_snap_chnn = nvrhal::kNoSnapChannel;       // the snapshot writes it
uint32_t playback_status;                             // playback writes it
uint32_t vo_for_ezoom;                                // the application writes it
uint32_t zoom_channel;                                // single-pane layouts write it
uint32_t zoom_flag_click;                             // the application writes it
uint32_t zoom_arg_pre[3];                             // single-pane layouts of the secondary output write it
uint32_t zoom_arg[3];                                 // the application's own

PaneRect set_bind_para[4][nvrhal::kPaneChannels]; // display start, layouts and zoom write it
