/* sound_sink.h - where the samples of an audio output go. */
#ifndef VBOARD_SOUND_SINK_H
#define VBOARD_SOUND_SINK_H

#include <cstddef>
#include <cstdint>

namespace vboard
{

class SoundSink
{
public:
    virtual ~SoundSink() = default;

    /* Take the next samples, mono; never waits for the sound. False: it cannot take any more. */
    virtual bool play(const int16_t *samples, size_t count) = 0;
};

} // namespace vboard

#endif
