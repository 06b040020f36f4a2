/*
 * stream_file.h - a camera stand-in or a recording: an elementary stream of H.264 or H.265 in a file,
 * cut into the frames that the library takes one at a time.
 */
#ifndef STREAM_FILE_H
#define STREAM_FILE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "nvrhal.h"

/* One encoded frame with the parameter sets in front of it. The bytes belong to the file. */
struct stream_frame {
    uint8_t *bytes;
    uint32_t length;
    bool key; /* a decoder can begin here */
};

struct stream_file {
    enum FrameCodec codec;
    uint8_t *bytes;
    size_t size;
    size_t at; /* start of the next frame */
};

/* Read a file whose name ends in .h264 or .h265 into memory. */
bool stream_file_open(struct stream_file *file, const char *path);
void stream_file_close(struct stream_file *file);

/* The next frame; false at the end of the file. */
bool stream_file_next(struct stream_file *file, struct stream_frame *frame);

void stream_file_rewind(struct stream_file *file);

/* A whole file in memory, for the caller to free; null when it cannot be read or is empty. */
uint8_t *read_whole_file(const char *path, size_t *size);

#endif
