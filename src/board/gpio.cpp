/* The output lines' place in start-up. Until they are driven there is nothing to configure. */
#include "nvrhal.h"

int32_t local_gpio_init()
{
    return 0;
}
