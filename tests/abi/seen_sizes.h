/* seen_sizes.h - the sizes of the public records as one language sees them. */
#ifndef SEEN_SIZES_H
#define SEEN_SIZES_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { kSeenSizes = 16 };

/* clang-format off */
#define SEEN_SIZES                                                                                           \
    {                                                                                                        \
        sizeof(DeviceParams), sizeof(StreamAttr), sizeof(FrameInfo), sizeof(DispAttrib), sizeof(BindArgs),   \
        sizeof(PaneRect), sizeof(StreamRingSizes), sizeof(StreamPoolConfig), sizeof(StreamIndexEntry),       \
        sizeof(StreamReader), sizeof(StreamProducerFrame), sizeof(OsdInfo), sizeof(OsdCompInfo),             \
        sizeof(UnicodeGb2312), sizeof(major_stream), offsetof(FrameInfo, pts)                                \
    }
/* clang-format on */

void sizes_in_c(size_t sizes[kSeenSizes]);
void sizes_in_cxx(size_t sizes[kSeenSizes]);

#ifdef __cplusplus
}
#endif

#endif
