/*
 * audio_speaker.h - the library's audio output, set up on the virtual board with the clock taken:
 * blocks go in through the library, and the clock is stepped as far as they need room.
 */
#ifndef AUDIO_SPEAKER_H
#define AUDIO_SPEAKER_H

#include "audio_tone.h"
#include "board_rig.h"
#include "mi_ao.h"
#include "nvrhal.h"
#include "vboard_audio.h"

namespace speaker
{

constexpr uint32_t kDevice = 3; // the library's
constexpr uint32_t kHeaderBytes = NVRHAL_SOUND_HEADER_BYTES;
constexpr uint32_t kFrameBytes = NVRHAL_SOUND_UNIT_BYTES;
constexpr uint32_t kFrameSamples = 1920; // of it, at 48 kHz
constexpr int64_t kFrame_us = 40000;
constexpr uint32_t kCapacity = 6 * 2048;
constexpr uint32_t kFramesThatFit = kCapacity / kFrameSamples;

vboard_audio_stat stat(uint32_t device = kDevice);

/* A block of `bytes` in all, header included, through the live entry. The clock is not touched. */
int32_t send_block(const tone::Bytes &bytes);

/* A header and these A-law bytes. */
tone::Bytes block_of(const tone::Bytes &a_law);

/* The platform's record for a block. */
MI_AO_Frame frame_of(const tone::Bytes &bytes);

/* Send sound in blocks of one frame, stepping the clock when the queue is full. */
void say(const tone::Bytes &a_law);

/* Step the clock until all has been played. */
void play_out();

/* Everything played from sample `first` on. */
tone::Samples heard(uint64_t first = 0);

/* A fresh board whose audio output the library has set up; the clock is taken. */
class Speaker : public rig::Board
{
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace speaker

#endif
