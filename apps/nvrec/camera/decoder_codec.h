/*
 * decoder_codec.h - which codec each of the library's decoder channels was made for.
 *
 * The library makes all of them for H.265 at start-up. Live intake makes a channel's decoder anew
 * when its camera comes with another codec than before, and remembers only that. For everything else - a
 * recording, a snapshot during playback, the camera after that - the recorder makes the decoder anew itself.
 * Both are noted here, since the library has no call that tells a decoder's codec.
 *
 * There is one library in a process, so there is one such table. Threads: any.
 */
#pragma once

#include "camera/codec.h"

namespace nvrec
{

/** Live intake has seen a frame of that codec. Called after every frame that got so far. */
void note_live_codec(int channel, Codec codec);

/**
 * Make a decoder anew for that codec, unless it has it already. A new decoder is bound to no pane: a layout
 * has to follow. Main thread.
 */
void match_decoder(int channel, Codec codec);

} // namespace nvrec
