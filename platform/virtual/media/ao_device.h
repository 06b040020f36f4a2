/*
 * ao_device.h - one audio output device with its one channel.
 *
 *     power-on -> attributes -> enabled -> channel enabled -> blocks are taken
 *                                             decoder set -> decoder enabled
 *                                             resampler enabled
 *
 * A block is decoded, resampled and queued by the thread that sends it; a full queue makes that
 * thread wait on the board's clock. What is due is rendered by whoever comes next: a sender, the
 * control face, the sound card's thread.
 *
 * Threads: any. Everything is guarded by the device's Waitable, and every call settles what the
 * clock has played before it looks at or changes anything. The sink's own lock is taken under it. A
 * sink is closed without it, because the sound card's thread may be on its way in.
 */
#ifndef VBOARD_AO_DEVICE_H
#define VBOARD_AO_DEVICE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "host/resampler.h"
#include "host/sound_sink.h"
#include "media/ao_playout.h"
#include "media/clock.h"
#include "mi_ao.h"
#include "vboard_audio.h"

namespace vboard
{

class AudioDevice
{
public:
    explicit AudioDevice(uint32_t number) : number_(number) {}

    /* The device face. Result codes of the media interface. */
    int32_t set_attr(const MI_AO_PubAttr *attr);
    int32_t enable();
    int32_t enable_channel();
    int32_t set_decoder(const MI_AO_AdecAttr *attr);
    int32_t enable_decoder();
    int32_t enable_resampler(uint32_t input_rate_hz);
    int32_t set_mute(bool mute);
    int32_t set_volume(int32_t volume_db);
    int32_t send(const MI_AO_Frame &frame, int32_t timeout_ms);

    /* The control face. 0 or a count; -1. */
    int read_stat(vboard_audio_stat &stat);
    int read_level(uint32_t window_ms, vboard_audio_level &level);
    int64_t read_samples(uint64_t first, int16_t *samples, size_t count);
    int wait_played(int32_t timeout_ms);
    int open_wav(const char *path);
    int open_sound();
    void close_sink();

    /* Back to power-on. */
    void reset();

private:
    struct Settings {
        std::optional<MI_AO_PubAttr> attr;
        std::optional<MI_AO_AdecAttr> decoder;
        bool enabled = false;
        bool channel_enabled = false;
        bool decoding = false;
        uint32_t resample_from_hz = 0; // 0 = off
        bool muted = false;
        int32_t volume_db = 0;
    };
    using Lock = std::unique_lock<std::mutex>;

    int32_t not_enabled() const;
    int32_t require_channel() const;
    uint32_t input_rate_hz() const;
    int32_t wait_for_room(Lock &lock, size_t count, int64_t deadline_us);
    int32_t queue(const MI_AO_Frame &frame);
    bool is_pause() const;
    void settle();
    void apply_gain();
    int attach(std::unique_ptr<SoundSink> sink);

    const uint32_t number_;
    Waitable shared_; // guards what follows
    Settings settings_;
    std::unique_ptr<Playout> playout_;     // from enable on
    std::unique_ptr<Resampler> resampler_; // while the resampler is enabled
    std::unique_ptr<SoundSink> sink_;
    uint64_t blocks_ = 0;
    uint64_t power_ons_ = 0; // a sender that waits finds out that the power went
};

/* Device 0 to VBOARD_AUDIO_DEVICES - 1; null beyond. */
AudioDevice *audio_device(uint32_t number);

} // namespace vboard

#endif
