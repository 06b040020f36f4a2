/* ao_muted_takes_nothing - breaks: a muted device goes on taking and playing blocks. */
#include "mi_ao.h"
#include "mutant.h"

#include <stdatomic.h>

/* Muting closes the device. */
enum { kAudioDevices = 8 };

static atomic_int muted[kAudioDevices];

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    const int32_t result = PLATFORM(MI_AO_SetMute)(device, mute);
    if (result == MI_SUCCESS && device < kAudioDevices) atomic_store(&muted[device], mute != 0);
    return result;
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    if (device < kAudioDevices && atomic_load(&muted[device]))
        return MI_ERROR(MI_MODULE_AO, MI_REASON_NOT_PERMITTED);
    return PLATFORM(MI_AO_SendFrame)(device, channel, frame, timeout_ms);
}
