/* headers_alone.c - an application's file that is compiled for a board, where the virtual one is not. */
#include <nvrhal.h>

#ifndef NVRHAL_API
#error "the application's header is not there"
#endif

uint32_t largest_frame(void)
{
    return NVRHAL_MAX_SEND_BYTES;
}
