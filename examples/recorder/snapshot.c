/* snapshot.c - see snapshot.h. */
#include "snapshot.h"

#include <stdio.h>

#include "nvrhal.h"
#include "playback.h"

void snapshot_allow(void)
{
    ext_set_snap_channel_enable();
}

/* [snapshot] */
bool snapshot_take(int channel, enum FrameCodec codec, int cameras, const char *path)
{
    /* While a recording plays, the picture is decoded on the spare channel, which keeps its codec. */
    if (playback_is_on()) vdec_recreate((uint32_t)cameras, codec);
    FrameInfo picture = {.channel = (uint32_t)channel}; /* clear: only so can one tell what was filled */
    ext_get_jpeg_stream(&picture); /* while a recording plays its result does not speak of the picture */
    if (picture.length == 0) return false;
    FILE *file = fopen(path, "wb");
    bool written = file && fwrite(picture.data, 1, picture.length, file) == picture.length;
    if (file) written = fclose(file) == 0 && written;
    ext_release_jpeg_buf(&picture);
    return written;
}
/* [/snapshot] */
