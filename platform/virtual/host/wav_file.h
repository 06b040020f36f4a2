/* wav_file.h - an audio output's samples as a WAV file: PCM, 16 bit, mono. */
#ifndef VBOARD_WAV_FILE_H
#define VBOARD_WAV_FILE_H

#include <memory>

#include "host/sound_sink.h"

namespace vboard
{

/*
 * Create the file, or empty it. The sizes in its header are brought up to date with every write, so
 * that it can be read at any time. It ends at 4 GiB. Null: the file cannot be created.
 */
std::unique_ptr<SoundSink> open_wav_file(const char *path, uint32_t rate_hz);

} // namespace vboard

#endif
