/* The audio output's place in start-up. Until the output stands there is none to set up. */
#include "nvrhal.h"

int32_t audio_init(void)
{
    return 0;
}
