/* audio.h - what the audio output currently serves, and the buffers that playback borrows. */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

constexpr uint32_t kAudioDevice = 3;
constexpr uint32_t kAudioChannel = 0;
constexpr uint32_t kAudioFrameBytes =
    NVRHAL_SOUND_UNIT_BYTES; // 40 ms of 8 kHz A-law, what one platform frame carries
constexpr uint32_t kAudioHeaderBytes = NVRHAL_SOUND_HEADER_BYTES; // before the first audio frame of a block

/** Give the output another use: audio_ctrl's mode words as every change of use sets them. */
void set_audio_use(AudioUse use);

/** Send `frames` frames that follow a block's header, blocking; a failing one does not stop the rest. */
void send_audio_frames(const uint8_t *block, uint32_t frames, const char *source,
                       int line = __builtin_LINE());

constexpr uint32_t kPlaybackBufferBytes = NVRHAL_MAX_SEND_BYTES;

extern uint8_t pu8Buf[kPlaybackBufferBytes]; // playback's input buffer, lent to the application
extern uint32_t u32BufLen;                   // its length, once it has been handed out

} // namespace nvrhal
