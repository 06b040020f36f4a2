/*
 * shown_channels.h - which cameras the panes on the screen show.
 *
 * The library drops the frames of hidden cameras by a mask of eight bits. It has none for channels 8
 * to 15: a layout that shows one of them takes the value that stands for all channels, and the
 * recorder then holds the frames of hidden cameras back itself.
 *
 * There is one library in a process, so there is one such mask. Threads: any.
 */
#pragma once

#include <cstdint>

namespace nvrec
{

/** Bit n = channel n has a pane in the layout that is applied next. Before ext_change_display_format. */
void note_shown_channels(uint32_t channels);

/** After a layout that succeeded: make the library show the channels that have no bit in its mask. */
void open_library_mask();

/**
 * Whether a channel's frame is to be kept from the library, which would decode it although it is not shown.
 */
bool is_held_back(int channel);

/** Whether a channel's frame that the library accepts reaches a decoder: during a layout it need not. */
bool is_decoded(int channel);

} // namespace nvrec
