/*
 * picture.h - picture settings of channels and outputs, stored or accepted only.
 */
#ifndef NVRHAL_PICTURE_H
#define NVRHAL_PICTURE_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Store three quality values of a channel's main or network stream. @return 0. Thread: any. */
NVRHAL_API int32_t ext_change_local_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                                uint32_t third);
NVRHAL_API int32_t ext_change_net_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                              uint32_t third);

/** Store a channel's network size code; its network stream becomes 640 x 360 for any. @return 0. Thread: any.
 */
NVRHAL_API int32_t ext_change_net_video_size(uint32_t channel, uint32_t size);

/** Only reported; the picture stays as it is. @return 0. Thread: any. */
NVRHAL_API int32_t ext_set_voutdev_hue(uint32_t channel, uint32_t value);
NVRHAL_API int32_t ext_set_voutdev_contrast(uint32_t channel, uint32_t value);
NVRHAL_API int32_t ext_set_voutdev_saturation(uint32_t channel, uint32_t value);

#ifdef __cplusplus
}
#endif

#endif
