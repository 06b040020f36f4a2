/* venc_release_frees_nothing - breaks: a released picture gives its room in the stream buffer back. */
#include "mi_venc.h"
#include "mutant.h"

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    (void)channel;
    return stream != NULL ? MI_SUCCESS : MI_ERROR(MI_MODULE_VENC, MI_REASON_NULL_POINTER);
}
