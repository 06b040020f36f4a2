/* ao_no_resampler - breaks: with the resampler on, blocks are played at the input rate that it was given. */
#include "mi_ao.h"
#include "mutant.h"

/* A stub that was never filled in: 8 kHz sound runs at the device's rate. */
int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    (void)device, (void)channel, (void)input_rate;
    return MI_SUCCESS;
}
