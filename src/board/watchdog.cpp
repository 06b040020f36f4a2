/* The watchdog's place in start-up. Until it is driven there is nothing to arm. */
#include "nvrhal.h"

uint32_t local_wdg_init()
{
    return 0;
}
