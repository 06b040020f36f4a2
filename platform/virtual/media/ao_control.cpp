/* ao_control.cpp - the control face of the audio output: state, level, samples, sinks. */
#include <algorithm>
#include <chrono>
#include <cmath>

#include "host/sound_card.h"
#include "host/wav_file.h"
#include "media/ao_device.h"
#include "media/call.h"

namespace vboard
{
namespace
{

constexpr uint32_t kLongestWindow_ms = 10000; // as long as samples are kept

double dbfs(double of_full_scale)
{
    return of_full_scale > 0 ? 20 * std::log10(of_full_scale) : VBOARD_AUDIO_SILENCE_DBFS;
}

AudioDevice *find_device(uint32_t number)
{
    AudioDevice *device = audio_device(number);
    if (device == nullptr) refuse_plainly("there is no audio device %u", number);
    return device;
}

} // namespace

int AudioDevice::read_stat(vboard_audio_stat &stat)
{
    const Lock lock(shared_.mutex);
    settle();
    stat = {};
    stat.enabled = settings_.enabled;
    stat.channel_enabled = settings_.channel_enabled;
    stat.decoding = settings_.decoding;
    stat.muted = settings_.muted;
    stat.volume_db = settings_.volume_db;
    if (settings_.attr) {
        stat.rate_hz = settings_.attr->sample_rate;
        stat.input_rate_hz = input_rate_hz();
    }
    if (playout_ == nullptr) return 0;
    stat.queued = static_cast<uint32_t>(playout_->queued());
    stat.capacity = static_cast<uint32_t>(playout_->capacity());
    stat.blocks = blocks_;
    stat.played = playout_->history().total();
    stat.clipped = playout_->clipped();
    stat.ran_dry = playout_->ran_dry();
    return 0;
}

int AudioDevice::read_level(uint32_t window_ms, vboard_audio_level &level)
{
    if (window_ms == 0 || window_ms > kLongestWindow_ms)
        return refuse_plainly("a level over %u ms, 1 to %u can be had", window_ms, kLongestWindow_ms);
    const Lock lock(shared_.mutex);
    if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
    settle();
    const SoundLevel heard = playout_->history().level(clock_now_us(), window_ms);
    level = {dbfs(heard.peak), dbfs(heard.rms)};
    return 0;
}

int64_t AudioDevice::read_samples(uint64_t first, int16_t *samples, size_t count)
{
    const Lock lock(shared_.mutex);
    if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
    settle();
    const SoundHistory &history = playout_->history();
    if (first < history.first_kept())
        return refuse_plainly("sample %llu is no longer kept, the first is %llu",
                              static_cast<unsigned long long>(first),
                              static_cast<unsigned long long>(history.first_kept()));
    return static_cast<int64_t>(history.read(first, samples, count));
}

// On real time, so that a hanging test ends; a running board clock says when to look again, a taken
// one wakes everybody who waits.
int AudioDevice::wait_played(int32_t timeout_ms)
{
    using Steady = std::chrono::steady_clock;
    const Steady::time_point give_up = Steady::now() + std::chrono::milliseconds(timeout_ms);
    Lock lock(shared_.mutex);
    for (;;) {
        if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
        settle();
        if (playout_->queued() == 0) return 0;
        if (timeout_ms >= 0 && Steady::now() >= give_up) return -1;
        Steady::time_point look = timeout_ms >= 0 ? give_up : Steady::now() + std::chrono::hours(1);
        if (!clock_is_taken()) {
            const std::chrono::microseconds left(playout_->empty_at_us() - clock_now_us());
            look = std::min(look, Steady::now() + left);
        }
        shared_.changed.wait_until(lock, look);
    }
}

int AudioDevice::attach(std::unique_ptr<SoundSink> sink)
{
    {
        const Lock lock(shared_.mutex);
        if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
        if (sink_ == nullptr) {
            settle();
            sink_ = std::move(sink);
            return 0;
        }
    }
    return refuse_plainly("audio device %u has a sink already", number_);
}

int AudioDevice::open_wav(const char *path)
{
    if (path == nullptr) return refuse_plainly("no file name");
    uint32_t rate_hz = 0;
    {
        const Lock lock(shared_.mutex);
        if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
        if (sink_ != nullptr) return refuse_plainly("audio device %u has a sink already", number_);
        rate_hz = playout_->rate_hz();
    }
    std::unique_ptr<SoundSink> file = open_wav_file(path, rate_hz);
    if (file == nullptr) return refuse_plainly("\"%s\" cannot be written", path);
    return attach(std::move(file));
}

int AudioDevice::open_sound()
{
    uint32_t rate_hz = 0;
    {
        const Lock lock(shared_.mutex);
        if (playout_ == nullptr) return refuse_plainly("audio device %u is not enabled", number_);
        if (sink_ != nullptr) return refuse_plainly("audio device %u has a sink already", number_);
        rate_hz = playout_->rate_hz();
    }
    std::unique_ptr<SoundSink> card = open_sound_card(rate_hz, [this] {
        const Lock lock(shared_.mutex);
        settle();
    });
    if (card == nullptr) return refuse_plainly("this PC has no sound card");
    return attach(std::move(card));
}

void AudioDevice::close_sink()
{
    std::unique_ptr<SoundSink> closing; // let go outside the lock
    const Lock lock(shared_.mutex);
    settle();
    closing = std::move(sink_);
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_audio_get_stat(uint32_t device, vboard_audio_stat *stat)
{
    AudioDevice *unit = find_device(device);
    if (unit == nullptr) return -1;
    return stat != nullptr ? unit->read_stat(*stat) : refuse_plainly("no record");
}

int vboard_audio_get_level(uint32_t device, uint32_t window_ms, vboard_audio_level *level)
{
    AudioDevice *unit = find_device(device);
    if (unit == nullptr) return -1;
    return level != nullptr ? unit->read_level(window_ms, *level) : refuse_plainly("no record");
}

int64_t vboard_audio_read(uint32_t device, uint64_t first, int16_t *samples, size_t count)
{
    AudioDevice *unit = find_device(device);
    if (unit == nullptr) return -1;
    return samples != nullptr ? unit->read_samples(first, samples, count) : refuse_plainly("no samples");
}

int vboard_audio_wait_played(uint32_t device, int32_t timeout_ms)
{
    AudioDevice *unit = find_device(device);
    return unit != nullptr ? unit->wait_played(timeout_ms) : -1;
}

int vboard_audio_open_wav(uint32_t device, const char *path)
{
    AudioDevice *unit = find_device(device);
    return unit != nullptr ? unit->open_wav(path) : -1;
}

int vboard_audio_open_sound(uint32_t device)
{
    AudioDevice *unit = find_device(device);
    return unit != nullptr ? unit->open_sound() : -1;
}

int vboard_audio_close(uint32_t device)
{
    AudioDevice *unit = find_device(device);
    if (unit == nullptr) return -1;
    unit->close_sink();
    return 0;
}

} // extern "C"
