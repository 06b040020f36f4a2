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

/**
 * Store three quality values of a channel's main stream in major_stream.
 * @param channel  0 to NVRHAL_MAX_DECODERS - 1; any other stores nothing
 * @param first    any value, for StreamAttr::quality_1
 * @param second   any value, for StreamAttr::quality_2
 * @param third    any value, for StreamAttr::quality_3
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_change_local_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                                uint32_t third);

/**
 * Store three quality values of a channel's network stream in minor_stream.
 * @param channel  0 to NVRHAL_MAX_CAMERAS - 1; any other stores nothing
 * @param first    any value, for StreamAttr::quality_1
 * @param second   any value, for StreamAttr::quality_2
 * @param third    any value, for StreamAttr::quality_3
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_change_net_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                              uint32_t third);

/**
 * Store a channel's network size code; the attributes of its network stream become 640 x 360 pixels
 * for any.
 * @param channel  0 to 127; attributes there are for 0 to NVRHAL_MAX_CAMERAS - 1
 * @param size     size code, not pixels; any value
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_change_net_video_size(uint32_t channel, uint32_t size);

/**
 * Only prints its arguments; the picture stays as it is.
 * @param channel  any value
 * @param value    any value
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_set_voutdev_hue(uint32_t channel, uint32_t value);

/**
 * Only prints its arguments; the picture stays as it is.
 * @param channel  any value
 * @param value    any value
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_set_voutdev_contrast(uint32_t channel, uint32_t value);

/**
 * Only prints its arguments; the picture stays as it is.
 * @param channel  any value
 * @param value    any value
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_set_voutdev_saturation(uint32_t channel, uint32_t value);

#ifdef __cplusplus
}
#endif

#endif
