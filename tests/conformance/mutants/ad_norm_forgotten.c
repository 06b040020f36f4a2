/* ad_norm_forgotten - breaks: the analog chips' norm reads back as it was set. */
#include "ad_driver.h"
#include "board_io.h"
#include "mutant.h"

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    const int result = PLATFORM(board_ioctl)(descriptor, request, argument);
    if (result >= 0 && request == AD_GET_NORM) ((AdChipValue *)argument)->value = 0;
    return result;
}
