/* venc_length_one_short - breaks: a pack holds the whole of the encoded picture, to its last byte. */
#include "mi_venc.h"
#include "mutant.h"

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    const int32_t result = PLATFORM(MI_VENC_GetStream)(channel, stream, timeout_ms);
    if (result == MI_SUCCESS && stream->pack_count > 0) --stream->packs[stream->pack_count - 1].length_bytes;
    return result;
}
