/* hdmi_pcm.c - the simulated HDMI transmitter with its plug, and the simulated sound output. */
#include <stdlib.h>
#include <string.h>

#include "tern_hand.h"
#include "tern_inside.h"

enum { kMostRing = 1 << 20, kHeard = 1 << 17 /* samples that the ear remembers */ };

static int plugged = 1;
static unsigned moves;
static int powered, has_mode, sends, blank, picture;

TernStatus tern_hdmi_power(int on)
{
    pthread_mutex_lock(&tern_lock);
    const TernStatus status = tern_is_awake() ? TERN_OK : TERN_NO_POWER;
    if (status == TERN_OK) powered = on;
    if (!on) sends = 0;
    pthread_mutex_unlock(&tern_lock);
    return status;
}

TernStatus tern_hdmi_mode(const TernMode *mode, int with_picture, int sound)
{
    (void)sound;
    if (mode->width == 0 || mode->height == 0) return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    has_mode = 1;
    picture = with_picture;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

TernStatus tern_hdmi_send(int on)
{
    pthread_mutex_lock(&tern_lock);
    const TernStatus status = powered && (has_mode || !on) ? TERN_OK : TERN_BAD_ARGUMENT;
    if (status == TERN_OK) sends = on;
    pthread_mutex_unlock(&tern_lock);
    return status;
}

TernStatus tern_hdmi_blank(int on)
{
    pthread_mutex_lock(&tern_lock);
    blank = on;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

int tern_hdmi_sense(void)
{
    pthread_mutex_lock(&tern_lock);
    const int there = plugged;
    pthread_mutex_unlock(&tern_lock);
    return there;
}

unsigned tern_hdmi_moves(void)
{
    pthread_mutex_lock(&tern_lock);
    const unsigned so_far = moves;
    pthread_mutex_unlock(&tern_lock);
    return so_far;
}

TernStatus tern_hdmi_edid(uint8_t edid[TERN_EDID_BYTES])
{
    if (!tern_hdmi_sense()) return TERN_NO_SIGNAL;
    memset(edid, 0, TERN_EDID_BYTES);
    memset(edid + 1, 0xFF, 6);
    /* The first detailed timing: 1920 x 1080, low bytes and the upper four bits of each. */
    edid[54] = 0x02;
    edid[55] = 0x3A;
    edid[56] = 1920 & 0xFF;
    edid[58] = 1920 >> 8 << 4;
    edid[59] = 1080 & 0xFF;
    edid[61] = 1080 >> 8 << 4;
    edid[126] = 1; /* an extension follows: HDMI */
    return TERN_OK;
}

void tern_hand_plug(int now_plugged)
{
    pthread_mutex_lock(&tern_lock);
    if (plugged != now_plugged) ++moves;
    plugged = now_plugged;
    pthread_mutex_unlock(&tern_lock);
}

int tern_eye_signal(void)
{
    pthread_mutex_lock(&tern_lock);
    const int seen = plugged && powered && sends && picture && !blank;
    pthread_mutex_unlock(&tern_lock);
    return seen;
}

/* --- sound: a ring, of which real time takes samples away --- */

static int16_t *ring; /* left samples; the board has one loudspeaker */
static unsigned ring_samples, ring_first, ring_count, rate_hz, gain = TERN_GAIN_ONE;
static int64_t played_until_us;
static float heard[kHeard]; /* what was played last, silence included; index by sample number */
static uint64_t heard_count;

static void play(int sample)
{
    const float level = (float)sample * (float)gain / TERN_GAIN_ONE / 32768.0F;
    heard[heard_count++ % kHeard] = level > 1 ? 1 : level < -1 ? -1 : level;
}

/* Play what is due by now. The lock is held. */
static void catch_up(void)
{
    if (ring == NULL) return;
    const int64_t now_us = tern_now_us();
    const int64_t due = (now_us - played_until_us) * rate_hz / 1000000;
    for (int64_t i = 0; i < due; ++i) {
        if (ring_count == 0) {
            play(0);
            continue;
        }
        play(ring[ring_first]);
        ring_first = (ring_first + 1) % ring_samples;
        --ring_count;
    }
    played_until_us += due * 1000000 / rate_hz;
}

TernStatus tern_pcm_open(unsigned rate, unsigned samples)
{
    if (rate < 8000 || rate > 192000 || samples == 0 || samples > kMostRing) return TERN_BAD_ARGUMENT;
    int16_t *memory = calloc(samples, sizeof *memory);
    if (memory == NULL) return TERN_NO_MEMORY;
    pthread_mutex_lock(&tern_lock);
    free(ring);
    ring = memory;
    ring_samples = samples;
    ring_first = ring_count = 0;
    rate_hz = rate;
    gain = TERN_GAIN_ONE;
    played_until_us = tern_now_us();
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

unsigned tern_pcm_write(const int16_t *stereo, unsigned samples)
{
    pthread_mutex_lock(&tern_lock);
    catch_up();
    unsigned taken = 0;
    while (taken < samples && ring_count < ring_samples) {
        ring[(ring_first + ring_count++) % ring_samples] = stereo[(size_t)2 * taken];
        ++taken;
    }
    pthread_mutex_unlock(&tern_lock);
    return taken;
}

unsigned tern_pcm_space(void)
{
    pthread_mutex_lock(&tern_lock);
    catch_up();
    const unsigned space = ring_samples - ring_count;
    pthread_mutex_unlock(&tern_lock);
    return space;
}

TernStatus tern_pcm_gain(unsigned new_gain)
{
    if (new_gain > 32 * TERN_GAIN_ONE) return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    catch_up();
    gain = new_gain;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

double tern_ear(unsigned milliseconds)
{
    pthread_mutex_lock(&tern_lock);
    catch_up();
    uint64_t samples = (uint64_t)milliseconds * rate_hz / 1000;
    if (samples > kHeard) samples = kHeard;
    if (samples > heard_count) samples = heard_count;
    double sum = 0;
    for (uint64_t i = heard_count - samples; i < heard_count; ++i)
        sum += (double)heard[i % kHeard] * (double)heard[i % kHeard];
    pthread_mutex_unlock(&tern_lock);
    return samples > 0 ? sum / (double)samples : 0;
}
