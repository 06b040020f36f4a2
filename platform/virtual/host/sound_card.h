/*
 * sound_card.h - an audio output's samples on the PC's sound card.
 *
 * The board's clock paces the output, the card's crystal the card. A buffer between them evens the
 * two out: the card starts when it holds 60 ms, fills a hole with silence and waits for 60 ms again,
 * and beyond 500 ms the oldest samples are dropped.
 *
 * Threads: SDL calls from a thread of its own. That thread calls `render_due` first, holding no lock
 * of this class. Destruction waits for a running call, so it must not hold what render_due locks.
 */
#ifndef VBOARD_SOUND_CARD_H
#define VBOARD_SOUND_CARD_H

#include <functional>
#include <memory>

#include "host/sound_sink.h"

namespace vboard
{

/* `render_due` hands the sink what is due by the board's clock. Null: no sound device. */
std::unique_ptr<SoundSink> open_sound_card(uint32_t rate_hz, std::function<void()> render_due);

} // namespace vboard

#endif
