/*
 * ao.c - audio output. The chip plays stereo samples at one rate, so that decoder, resampler and volume are
 * this adapter's; and its ring never waits, so that a send sleeps until there is room.
 */
#include "mi_ao.h"

#include <stddef.h>
#include <string.h>

#include "adapter.h"

enum {
    kDevice = 3, /* the one that the library uses; the board has one loudspeaker */
    kOwnFrameCount = 6,
    kMostFrames = 64,
    kFewestPoints = 64,
    kMostPoints = 4096,
    kLowest_db = -60,
    kHighest_db = 30,
    kPortion = 256, /* samples that go to the chip at once */
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards what follows */
static pthread_cond_t changed;                           /* a block was queued */
static pthread_once_t once = PTHREAD_ONCE_INIT;
static int has_attr, is_enabled, channel_enabled, has_decoder, is_decoding, is_muted;
static int32_t volume_db;
static uint32_t resample_from;
static MI_AO_PubAttr current;

/* The resampler's state: its last sample, and how far behind it the next output lies, in output_rate-ths. */
static int last_sample;
static uint32_t phase;

static void make_condition(void)
{
    condition_init(&changed);
}

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_AO, reason);
}

static int is_rate(uint32_t rate)
{
    static const uint32_t rates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
    for (size_t i = 0; i < sizeof rates / sizeof rates[0]; ++i)
        if (rates[i] == rate) return 1;
    return 0;
}

static int32_t check_place(uint32_t device, uint32_t channel)
{
    if (device != kDevice) return refuse(MI_REASON_BAD_DEVICE);
    return channel == 0 ? MI_SUCCESS : refuse(MI_REASON_BAD_CHANNEL);
}

/* The lock is held. */
static int32_t check_enabled(void)
{
    return is_enabled && channel_enabled ? MI_SUCCESS : refuse(MI_REASON_NOT_READY);
}

static uint32_t ring_samples(void)
{
    return (current.frame_count != 0 ? current.frame_count : kOwnFrameCount) * current.samples_per_frame;
}

/* ---------------------------------------------------------------------------------- set-up --- */

static int32_t check_attr(const MI_AO_PubAttr *attr)
{
    if (!is_rate(attr->sample_rate) || attr->samples_per_frame < kFewestPoints ||
        attr->samples_per_frame > kMostPoints || attr->frame_count > kMostFrames)
        return refuse(MI_REASON_BAD_VALUE);
    if (attr->bit_width != 0 || attr->work_mode != 0 || attr->sound_mode != 0 || attr->channels != 1 ||
        attr->codec_channels != 0)
        return refuse(MI_REASON_UNSUPPORTED);
    return MI_SUCCESS;
}

int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    int32_t result = check_place(device, 0);
    if (result != MI_SUCCESS) return result;
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    result = check_attr(attr);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    if (is_enabled && memcmp(attr, &current, sizeof current) != 0) result = refuse(MI_REASON_NOT_PERMITTED);
    if (result == MI_SUCCESS) {
        current = *attr;
        has_attr = 1;
    }
    pthread_mutex_unlock(&lock);
    return result;
}

/* The chip's gain is a factor: ten to the power of a twentieth of the decibels. */
static int32_t set_gain(void)
{
    static const double db = 1.1220184543019633;
    double gain = is_muted ? 0 : TERN_GAIN_ONE;
    for (int32_t i = 0; i < volume_db; ++i)
        gain *= db;
    for (int32_t i = 0; i > volume_db; --i)
        gain /= db;
    return code_of(MI_MODULE_AO, tern_pcm_gain((unsigned)(gain + 0.5)));
}

int32_t MI_AO_Enable(uint32_t device)
{
    pthread_once(&once, make_condition);
    int32_t result = check_place(device, 0);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    if (!has_attr) result = refuse(MI_REASON_NOT_READY);
    if (result == MI_SUCCESS && !is_enabled) {
        result = code_of(MI_MODULE_AO, tern_pcm_open(current.sample_rate, ring_samples()));
        is_enabled = result == MI_SUCCESS;
        if (is_enabled) result = set_gain();
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    int32_t result = check_place(device, channel);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    if (is_enabled)
        channel_enabled = 1;
    else
        result = refuse(MI_REASON_NOT_READY);
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    int32_t result = check_place(device, channel);
    if (result != MI_SUCCESS) return result;
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (attr->codec != MI_AO_CODEC_G711A || attr->sound_mode != 0) return refuse(MI_REASON_UNSUPPORTED);
    if (!is_rate(attr->sample_rate)) return refuse(MI_REASON_BAD_VALUE);
    pthread_mutex_lock(&lock);
    result = check_enabled();
    if (result == MI_SUCCESS) has_decoder = 1;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    int32_t result = check_place(device, channel);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    result = check_enabled();
    if (result == MI_SUCCESS && !has_decoder) result = refuse(MI_REASON_NOT_READY);
    if (result == MI_SUCCESS) is_decoding = 1;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    int32_t result = check_place(device, channel);
    if (result != MI_SUCCESS) return result;
    if (!is_rate(input_rate)) return refuse(MI_REASON_BAD_VALUE);
    pthread_mutex_lock(&lock);
    result = check_enabled();
    if (result == MI_SUCCESS) resample_from = input_rate;
    pthread_mutex_unlock(&lock);
    return result;
}

/* ----------------------------------------------------------------------------------- volume --- */

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    int32_t result = check_place(device, 0);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    if (is_enabled) {
        is_muted = mute != 0;
        result = set_gain();
    } else {
        result = refuse(MI_REASON_NOT_READY);
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_AO_SetVolume(uint32_t device, int32_t new_volume_db)
{
    int32_t result = check_place(device, 0);
    if (result != MI_SUCCESS) return result;
    if (new_volume_db < kLowest_db || new_volume_db > kHighest_db) return refuse(MI_REASON_BAD_VALUE);
    pthread_mutex_lock(&lock);
    if (is_enabled) {
        volume_db = new_volume_db;
        result = set_gain();
    } else {
        result = refuse(MI_REASON_NOT_READY);
    }
    pthread_mutex_unlock(&lock);
    return result;
}

/* ------------------------------------------------------------------------------------ sound --- */

static int a_law_sample(uint8_t byte)
{
    const unsigned code = byte ^ 0x55u; /* every other bit is sent inverted */
    const unsigned exponent = code >> 4 & 7;
    int magnitude = (int)(code & 15) * 16 + 8;
    if (exponent > 0) magnitude = (magnitude + 256) << (exponent - 1);
    return (code & 0x80) != 0 ? magnitude : -magnitude;
}

static int input_sample(const MI_AO_Frame *frame, size_t index)
{
    if (is_decoding) return a_law_sample(((const uint8_t *)frame->data[0])[index]);
    int16_t sample;
    memcpy(&sample, (const uint8_t *)frame->data[0] + index * sizeof sample, sizeof sample);
    return sample;
}

/* Samples of the block at the ring's rate, on straight lines between those that came. The lock is held. */
static void queue(const MI_AO_Frame *frame, size_t samples)
{
    const uint32_t from = resample_from != 0 ? resample_from : current.sample_rate;
    int16_t portion[2 * kPortion];
    unsigned filled = 0;
    for (size_t i = 0; i < samples; ++i) {
        const int sample = input_sample(frame, i);
        for (; phase < current.sample_rate; phase += from) {
            const int64_t way = (int64_t)(sample - last_sample) * phase / current.sample_rate;
            portion[2 * filled] = portion[2 * filled + 1] = (int16_t)(last_sample + way);
            if (++filled < kPortion) continue;
            tern_pcm_write(portion, filled);
            filled = 0;
        }
        phase -= current.sample_rate;
        last_sample = sample;
    }
    tern_pcm_write(portion, filled);
}

/* Until the ring has room. The lock is held, and let go meanwhile. */
static int32_t wait_for_room(unsigned needed, int64_t until_us)
{
    for (;;) {
        const unsigned space = tern_pcm_space();
        if (space >= needed) return MI_SUCCESS;
        const int64_t now_us = monotonic_us();
        if (now_us >= until_us) return refuse(MI_REASON_BUFFER_FULL);
        const unsigned missing = space < needed ? needed - space : 1;
        const int64_t room_us = now_us + (int64_t)missing * 1000000 / current.sample_rate + 500;
        condition_wait(&changed, &lock, room_us < until_us ? room_us : until_us);
    }
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    pthread_once(&once, make_condition);
    const int64_t until_us = deadline_us(timeout_ms);
    int32_t result = check_place(device, channel);
    if (result != MI_SUCCESS) return result;
    if (frame == NULL || frame->data[0] == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (frame->bit_width != 0 || frame->sound_mode != 0) return refuse(MI_REASON_UNSUPPORTED);
    pthread_mutex_lock(&lock);
    result = check_enabled();
    const uint32_t unit = is_decoding ? 1 : sizeof(int16_t);
    const size_t samples = frame->length_bytes / unit;
    if (result == MI_SUCCESS && (samples == 0 || frame->length_bytes % unit != 0))
        result = refuse(MI_REASON_BAD_VALUE);
    if (result == MI_SUCCESS) {
        const uint32_t from = resample_from != 0 ? resample_from : current.sample_rate;
        const uint64_t needed = ((uint64_t)samples * current.sample_rate + from - 1) / from;
        result = needed <= ring_samples() ? wait_for_room((unsigned)needed, until_us)
                                          : refuse(MI_REASON_BAD_VALUE);
    }
    if (result == MI_SUCCESS) {
        queue(frame, samples);
        pthread_cond_broadcast(&changed);
    }
    pthread_mutex_unlock(&lock);
    return result;
}
