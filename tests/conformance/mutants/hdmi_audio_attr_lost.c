/* hdmi_audio_attr_lost - breaks: MI_HDMI_GetAttr gives every attribute as it was set. */
#include "mi_hdmi.h"
#include "mutant.h"

/* Only the picture's half is read back from the chip. */
int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    const int32_t result = PLATFORM(MI_HDMI_GetAttr)(device, attr);
    if (result != MI_SUCCESS) return result;
    attr->audio_enabled = attr->audio_multichannel = attr->audio_sample_rate = 0;
    attr->audio_bit_depth = attr->audio_coding = 0;
    return result;
}
