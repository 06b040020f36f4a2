/* vdec_shared_staging - breaks: senders of different channels may send at the same time. */
#include "mi_vdec.h"
#include "mutant.h"

#include <string.h>

/* One buffer for all channels on the way to the chip, and no lock around it. */
enum { kStaging_bytes = 4 << 20, kTransfer_us = 1000 };

static uint8_t staging[kStaging_bytes];

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (stream == NULL || stream->address == NULL || stream->length_bytes > kStaging_bytes)
        return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    memcpy(staging, stream->address, stream->length_bytes);
    real_sleep_us(kTransfer_us);
    MI_VDEC_Stream staged = *stream;
    staged.address = staging;
    return PLATFORM(MI_VDEC_SendStream)(channel, &staged, timeout_ms);
}
