/*
 * not_yet.c - what sources of the example's adapter ask of one another, for those that a step of the port has
 * not reached: nothing is bound, nothing exists. Weak: the real ones take the places when they come.
 */
#include <stddef.h>

#include "adapter.h"
#include "mi_sys.h"

#define NOT_YET __attribute__((weak))

NOT_YET int32_t source_of_port(int32_t device, uint32_t port)
{
    (void)device;
    (void)port;
    return kNoChannel;
}

NOT_YET int way_to_encoder(uint32_t encoder, WayToEncoder *way)
{
    (void)encoder;
    (void)way;
    return 0;
}

NOT_YET TernDecoder *decoder_of(int32_t channel)
{
    (void)channel;
    return NULL;
}

NOT_YET void decoder_picture_size(int32_t channel, unsigned *width, unsigned *height)
{
    (void)channel;
    *width = *height = 0;
}

NOT_YET int decoder_exists(uint32_t channel)
{
    (void)channel;
    return 0;
}

NOT_YET int scaler_exists(uint32_t channel)
{
    (void)channel;
    return 0;
}

NOT_YET int encoder_exists(uint32_t device, uint32_t channel)
{
    (void)device;
    (void)channel;
    return 0;
}

NOT_YET void display_apply(void) {}

NOT_YET void encoders_apply(void) {}

/* The skeleton has them in the file that the second step replaces. */
NOT_YET int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink,
                                   uint32_t source_rate, uint32_t sink_rate)
{
    (void)source;
    (void)sink;
    (void)source_rate;
    (void)sink_rate;
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
}

NOT_YET int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    (void)source;
    (void)sink;
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
}

NOT_YET int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth,
                                             uint32_t queue_depth)
{
    (void)port;
    (void)user_depth;
    (void)queue_depth;
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
}
