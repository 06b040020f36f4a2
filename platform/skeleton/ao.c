/*
 * ao.c - audio output. The contracts are those of mi_ao.h.
 */
#include "mi_ao.h"

#include "unsupported.h"

/**
 * Set a device's attributes.
 *
 * @param device  the library gives 3
 * @param attr    what is wanted
 * @return 0, or a code
 * Order: before MI_AO_Enable. An enabled device takes the attributes that it has once more.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_VALUE or UNSUPPORTED: a value that cannot be had; NOT_PERMITTED: other ones
 *   while it is enabled.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    (void)device;
    (void)attr;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Start a device. It is silent while nothing is queued.
 *
 * @param device  the library gives 3
 * @return 0, or a code
 * Order: after MI_AO_SetPubAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 500 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: no attributes.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_Enable(uint32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Start an enabled device's channel.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @return 0, or a code
 * Order: after MI_AO_Enable. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: the device is not enabled.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    (void)device;
    (void)channel;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Set the built-in decoder up; MI_AO_EnableAdec puts it in front of the channel.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @param attr     what comes in
 * @return 0, or a code
 * Order: after MI_AO_EnableChn; may be repeated.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; UNSUPPORTED: codec or sound
 *   mode; BAD_VALUE: sample rate.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    (void)device;
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Put the decoder in front of the channel: blocks that are sent are encoded bytes from now on.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @return 0, or a code
 * Order: after MI_AO_SetAdecAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled, or no decoder attributes.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    (void)device;
    (void)channel;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Convert the channel's input to the device's rate.
 *
 * @param device      the library gives 3
 * @param channel     0
 * @param input_rate  Hz; the library gives 8000
 * @return 0, or a code
 * Order: after MI_AO_EnableChn. The same rate once more is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; BAD_VALUE: a rate that
 *   cannot be had; NO_MEMORY.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    (void)device;
    (void)channel;
    (void)input_rate;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Silence a device or let it be heard. What is queued goes on playing meanwhile, unheard: sends are taken
 * at the same pace.
 *
 * @param device  the library gives 3
 * @param mute    0 = heard, else silent
 * @return 0, or a code
 * Order: after MI_AO_Enable.
 * Thread: any, also while another thread waits in MI_AO_SendFrame.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not enabled.
 * Failure: ignored.
 */
int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    (void)device;
    (void)mute;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Set the gain.
 *
 * @param device     the library gives 3
 * @param volume_db  dB, -60 to 30; 0 after MI_AO_Enable. The library gives volume * 90 / 100 - 60 for
 *                   the application's 0 to 100
 * @return 0, or a code
 * Order: after MI_AO_Enable.
 * Thread: any, also while another thread waits in MI_AO_SendFrame.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_VALUE: beyond -60 to 30; NOT_READY: not enabled.
 * Failure: printed; ext_set_audio_output_volume returns -1, and the volume stays.
 */
int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    (void)device;
    (void)volume_db;
    return unsupported(MI_MODULE_AO, __func__);
}

/**
 * Queue a block, behind those that were sent before. The device plays its queue at its own rate, so that
 * a sender that never pauses is held to the pace of the sound: with 320 bytes of A-law a send takes
 * 40 ms on the average, once the queue is full. The queue holds 100 ms to 500 ms.
 *
 * @param device      the library gives 3
 * @param channel     0
 * @param frame       the library sends 320 bytes of A-law in data[0]
 * @param timeout_ms  milliseconds to wait for room; 0 = not at all, negative = for ever. The library
 *                    gives -1
 * @return 0, or a code: then nothing of it was queued
 * Order: device and channel are enabled.
 * Thread: any; one block is queued whole before another thread's. A send that waits keeps SetMute and
 *   SetVolume of its device not waiting.
 * Memory: record and bytes are the caller's, and are copied before the call returns.
 * Time: at once when there is room; otherwise until there is, timeout_ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; BAD_VALUE: no bytes, or more
 *   than the whole queue; UNSUPPORTED: bit width or sound mode; BUFFER_FULL: no room in time.
 * Failure: printed; the block is lost, and the next one is sent.
 */
int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    (void)device;
    (void)channel;
    (void)frame;
    (void)timeout_ms;
    return unsupported(MI_MODULE_AO, __func__);
}
