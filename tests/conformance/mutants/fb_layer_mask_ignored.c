/* fb_layer_mask_ignored - breaks: only the display-layer attributes that the mask names are applied. */
#include "board_io.h"
#include "fb_driver.h"
#include "mutant.h"

/* The whole record goes into the registers. */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    if (request != FBIOSET_DISPLAYLAYER_ATTRIBUTES || argument == NULL)
        return PLATFORM(board_ioctl)(descriptor, request, argument);
    FbDisplayLayer all = *(const FbDisplayLayer *)argument;
    all.mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE | FB_LAYER_SCREEN_SIZE |
               FB_LAYER_PREMULTIPLIED | FB_LAYER_COLOR_FORMAT;
    return PLATFORM(board_ioctl)(descriptor, request, &all);
}
