/* snapshot.h - a JPEG picture of one camera in a file. UI thread. */
#ifndef SNAPSHOT_H
#define SNAPSHOT_H

#include <stdbool.h>

#include "stream_file.h"

/* Allow snapshots, once. */
void snapshot_allow(void);

/*
 * Take one, NVRHAL_SNAPSHOT_WIDTH x NVRHAL_SNAPSHOT_HEIGHT. Waits up to 2.5 s. `cameras` is their number:
 * the spare decoder's channel.
 */
bool snapshot_take(int channel, enum FrameCodec codec, int cameras, const char *path);

#endif
