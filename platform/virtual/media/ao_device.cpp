/* ao_device.cpp - settings, refusals and the way of a block. See ao_device.h. */
#include "media/ao_device.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <vector>

#include "host/a_law.h"
#include "media/call.h"

namespace vboard
{
namespace
{

constexpr uint32_t kRates_hz[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr uint32_t kFewestPoints = 64; // samples of one hardware frame
constexpr uint32_t kMostPoints = 4096;
constexpr uint32_t kOwnFrameCount = 6; // what 0 stands for: 256 ms at 48 kHz and 2048 points
constexpr uint32_t kMostFrameCount = 64;
constexpr int32_t kLowestVolume_db = -60;
constexpr int32_t kHighestVolume_db = 30;
constexpr uint32_t kSampleBytes = sizeof(int16_t);
constexpr int64_t kPause_us = 200000; // longer without sound than a late block: a new sound begins

bool is_rate(uint32_t rate_hz)
{
    return std::find(std::begin(kRates_hz), std::end(kRates_hz), rate_hz) != std::end(kRates_hz);
}

int32_t check_attr(const MI_AO_PubAttr &attr)
{
    if (!is_rate(attr.sample_rate))
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "sample rate %u Hz", attr.sample_rate);
    if (attr.samples_per_frame < kFewestPoints || attr.samples_per_frame > kMostPoints)
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "%u samples per frame, %u to %u can be had",
                      attr.samples_per_frame, kFewestPoints, kMostPoints);
    if (attr.frame_count > kMostFrameCount)
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "%u frames, %u at most", attr.frame_count,
                      kMostFrameCount);
    if (attr.bit_width != 0 || attr.work_mode != 0 || attr.codec_channels != 0)
        return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED,
                      "bit width code %u, work mode %u, %u codec channels: only 0 of each", attr.bit_width,
                      attr.work_mode, attr.codec_channels);
    if (attr.sound_mode != 0 || attr.channels != 1)
        return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED,
                      "sound mode %u with %u channels: only mono, mode 0 with 1", attr.sound_mode,
                      attr.channels);
    return MI_SUCCESS;
}

size_t queue_capacity(const MI_AO_PubAttr &attr)
{
    return size_t{attr.frame_count != 0 ? attr.frame_count : kOwnFrameCount} * attr.samples_per_frame;
}

std::vector<int16_t> decode_a_law(const uint8_t *bytes, size_t count)
{
    const ALawTable &table = *a_law_table();
    std::vector<int16_t> samples(count);
    std::transform(bytes, bytes + count, samples.begin(), [&](uint8_t byte) { return table[byte]; });
    return samples;
}

std::vector<int16_t> copy_samples(const void *bytes, size_t size)
{
    std::vector<int16_t> samples(size / kSampleBytes);
    memcpy(samples.data(), bytes, samples.size() * kSampleBytes);
    return samples;
}

} // namespace

int32_t AudioDevice::not_enabled() const
{
    return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "audio device %u is not enabled", number_);
}

int32_t AudioDevice::require_channel() const
{
    if (!settings_.enabled) return not_enabled();
    if (!settings_.channel_enabled)
        return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "channel 0 of audio device %u is not enabled",
                      number_);
    return MI_SUCCESS;
}

uint32_t AudioDevice::input_rate_hz() const
{
    return settings_.resample_from_hz != 0 ? settings_.resample_from_hz : settings_.attr->sample_rate;
}

// Attributes of a running device stay; to be told the same again does no harm.
int32_t AudioDevice::set_attr(const MI_AO_PubAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no attributes");
    const int32_t checked = check_attr(*attr);
    if (checked != MI_SUCCESS) return checked;
    const Lock lock(shared_.mutex);
    if (settings_.enabled && memcmp(&*settings_.attr, attr, sizeof *attr) != 0)
        return refuse(MI_MODULE_AO, MI_REASON_NOT_PERMITTED,
                      "audio device %u is enabled: its attributes cannot change", number_);
    settings_.attr = *attr;
    return MI_SUCCESS;
}

int32_t AudioDevice::enable()
{
    const Lock lock(shared_.mutex);
    if (!settings_.attr)
        return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "audio device %u has no attributes", number_);
    if (settings_.enabled) return MI_SUCCESS;
    playout_ = std::make_unique<Playout>(settings_.attr->sample_rate, queue_capacity(*settings_.attr));
    settings_.enabled = true;
    apply_gain();
    return MI_SUCCESS;
}

int32_t AudioDevice::enable_channel()
{
    const Lock lock(shared_.mutex);
    if (!settings_.enabled) return not_enabled();
    settings_.channel_enabled = true;
    return MI_SUCCESS;
}

int32_t AudioDevice::set_decoder(const MI_AO_AdecAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no attributes");
    const Lock lock(shared_.mutex);
    const int32_t ready = require_channel();
    if (ready != MI_SUCCESS) return ready;
    if (attr->codec != MI_AO_CODEC_G711A)
        return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED, "audio codec %u, only %u (A-law)", attr->codec,
                      static_cast<unsigned>(MI_AO_CODEC_G711A));
    if (!is_rate(attr->sample_rate))
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "sample rate %u Hz", attr->sample_rate);
    if (attr->sound_mode != 0)
        return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED, "sound mode %u, only 0 (mono)", attr->sound_mode);
    settings_.decoder = *attr;
    return MI_SUCCESS;
}

int32_t AudioDevice::enable_decoder()
{
    const Lock lock(shared_.mutex);
    const int32_t ready = require_channel();
    if (ready != MI_SUCCESS) return ready;
    if (!settings_.decoder)
        return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "the decoder of audio device %u has no attributes",
                      number_);
    if (a_law_table() == nullptr)
        return refuse(MI_MODULE_AO, MI_REASON_FAULT, "libavcodec has no A-law decoder");
    settings_.decoding = true;
    return MI_SUCCESS;
}

int32_t AudioDevice::enable_resampler(uint32_t rate_hz)
{
    if (!is_rate(rate_hz)) return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "input rate %u Hz", rate_hz);
    const Lock lock(shared_.mutex);
    const int32_t ready = require_channel();
    if (ready != MI_SUCCESS) return ready;
    if (settings_.resample_from_hz == rate_hz) return MI_SUCCESS;
    resampler_ = Resampler::create(rate_hz, settings_.attr->sample_rate);
    settings_.resample_from_hz = resampler_ != nullptr ? rate_hz : 0;
    if (resampler_ == nullptr)
        return refuse(MI_MODULE_AO, MI_REASON_NO_MEMORY, "no resampler from %u Hz", rate_hz);
    return MI_SUCCESS;
}

int32_t AudioDevice::set_mute(bool mute)
{
    const Lock lock(shared_.mutex);
    if (!settings_.enabled) return not_enabled();
    settle();
    settings_.muted = mute;
    apply_gain();
    return MI_SUCCESS;
}

int32_t AudioDevice::set_volume(int32_t volume_db)
{
    if (volume_db < kLowestVolume_db || volume_db > kHighestVolume_db)
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "volume %d dB, %d to %d can be had", volume_db,
                      kLowestVolume_db, kHighestVolume_db);
    const Lock lock(shared_.mutex);
    if (!settings_.enabled) return not_enabled();
    settle();
    settings_.volume_db = volume_db;
    apply_gain();
    return MI_SUCCESS;
}

void AudioDevice::apply_gain()
{
    playout_->set_gain(settings_.muted ? 0.0F
                                       : std::pow(10.0F, static_cast<float>(settings_.volume_db) / 20));
}

int32_t AudioDevice::send(const MI_AO_Frame &frame, int32_t timeout_ms)
{
    if (frame.data[0] == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no audio bytes");
    if (frame.bit_width != 0 || frame.sound_mode != 0)
        return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED, "bit width code %u, sound mode %u: only 0 of each",
                      frame.bit_width, frame.sound_mode);
    const int64_t deadline_us = clock_deadline_us(timeout_ms);
    Lock lock(shared_.mutex);
    const int32_t ready = require_channel();
    if (ready != MI_SUCCESS) return ready;
    const uint32_t unit_bytes = settings_.decoding ? 1 : kSampleBytes;
    if (frame.length_bytes == 0 || frame.length_bytes % unit_bytes != 0)
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "a block of %u bytes, %u a sample",
                      frame.length_bytes, unit_bytes);
    const uint64_t samples = frame.length_bytes / unit_bytes;
    const uint64_t needed = (samples * playout_->rate_hz() + input_rate_hz() - 1) / input_rate_hz();
    if (needed > playout_->capacity())
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE,
                      "a block of %u bytes: its samples fill more than the queue of %zu", frame.length_bytes,
                      playout_->capacity());
    const int32_t waited = wait_for_room(lock, static_cast<size_t>(needed), deadline_us);
    return waited != MI_SUCCESS ? waited : queue(frame);
}

int32_t AudioDevice::wait_for_room(Lock &lock, size_t count, int64_t deadline_us)
{
    const uint64_t power_on = power_ons_;
    for (settle(); !playout_->has_room(count); settle()) {
        if (clock_now_us() >= deadline_us)
            return refuse(MI_MODULE_AO, MI_REASON_BUFFER_FULL, "audio device %u: no room within the time-out",
                          number_);
        const int64_t until_us = std::min(deadline_us, playout_->room_at_us(count));
        wait_until(shared_, lock, until_us, [&] { return power_ons_ != power_on; });
        if (power_ons_ != power_on) return not_enabled();
    }
    return MI_SUCCESS;
}

bool AudioDevice::is_pause() const
{
    return playout_->queued() == 0 && clock_now_us() - playout_->empty_at_us() > kPause_us;
}

int32_t AudioDevice::queue(const MI_AO_Frame &frame)
{
    const auto *bytes = static_cast<const uint8_t *>(frame.data[0]);
    const std::vector<int16_t> samples = settings_.decoding ? decode_a_law(bytes, frame.length_bytes)
                                                            : copy_samples(bytes, frame.length_bytes);
    std::vector<float> out;
    if (resampler_ == nullptr)
        std::transform(samples.begin(), samples.end(), std::back_inserter(out),
                       [](int16_t sample) { return static_cast<float>(sample) / 32768; });
    else if ((is_pause() && !resampler_->restart()) ||
             !resampler_->convert(samples.data(), samples.size(), out))
        return refuse(MI_MODULE_AO, MI_REASON_FAULT, "the resampler failed");
    playout_->queue(out, clock_now_us());
    ++blocks_;
    return MI_SUCCESS;
}

void AudioDevice::settle()
{
    if (playout_ == nullptr) return;
    const std::vector<int16_t> &played = playout_->settle(clock_now_us());
    if (sink_ == nullptr || played.empty()) return;
    if (sink_->play(played.data(), played.size())) return;
    warn("audio device %u: its file takes no more, and is closed", number_);
    sink_.reset(); // a file: a sound card always takes
}

void AudioDevice::reset()
{
    std::unique_ptr<SoundSink> closing;
    {
        const Lock lock(shared_.mutex);
        settle();
        closing = std::move(sink_);
        settings_ = {};
        playout_.reset();
        resampler_.reset();
        blocks_ = 0;
        ++power_ons_;
    }
    shared_.changed.notify_all();
}

AudioDevice *audio_device(uint32_t number)
{
    // Never freed: the sound card's thread may come in until the process ends.
    static AudioDevice *const devices[VBOARD_AUDIO_DEVICES] = {
        new AudioDevice(0), new AudioDevice(1), new AudioDevice(2), new AudioDevice(3),
        new AudioDevice(4), new AudioDevice(5), new AudioDevice(6), new AudioDevice(7),
    };
    return number < VBOARD_AUDIO_DEVICES ? devices[number] : nullptr;
}

} // namespace vboard
