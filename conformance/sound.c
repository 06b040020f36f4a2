/* sound.c - set-ups of the audio output. See sound.h. */
#include "sound.h"

#include <math.h>
#include <string.h>

static uint8_t a_law(double sample)
{
    int value = (int)(sample * 32767);
    const int sign = value >= 0 ? 0x80 : 0;
    if (value < 0) value = -value - 1;
    int exponent = 7;
    for (int mask = 0x4000; exponent > 0 && (value & mask) == 0; mask >>= 1)
        --exponent;
    const int mantissa = value >> (exponent == 0 ? 4 : exponent + 3) & 15;
    return (uint8_t)((sign | exponent << 4 | mantissa) ^ 0x55);
}

const uint8_t *tone(void)
{
    static uint8_t bytes[BLOCK];
    for (int i = 0; i < BLOCK && bytes[BLOCK - 1] == 0; ++i)
        bytes[i] = a_law(0.5 * sin(2 * 3.14159265358979 * 500 * i / INPUT_RATE));
    return bytes;
}

MI_AO_Frame block_of(const uint8_t *bytes, uint32_t length)
{
    MI_AO_Frame frame;
    memset(&frame, 0, sizeof frame);
    frame.data[0] = bytes;
    frame.length_bytes = length;
    return frame;
}

void need_device(void)
{
    NEED(MI_SYS_Init());
    NEED(MI_AO_SetPubAttr(DEV, &usual_pub));
    NEED(MI_AO_Enable(DEV));
}

static void need_channel(void)
{
    need_device();
    NEED(MI_AO_EnableChn(DEV, CHN));
}

void need_audio(void)
{
    need_channel();
    NEED(MI_AO_SetAdecAttr(DEV, CHN, &usual_adec));
    NEED(MI_AO_EnableAdec(DEV, CHN));
    NEED(MI_AO_EnableReSmp(DEV, CHN, INPUT_RATE));
    NEED(MI_AO_SetVolume(DEV, 0));
    NEED(MI_AO_SetMute(DEV, 0));
}
