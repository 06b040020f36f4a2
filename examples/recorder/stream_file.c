/*
 * stream_file.c - see stream_file.h.
 *
 * An elementary stream is a row of NAL units, each behind a start code 00 00 01 (with a further zero
 * in front of it or not). A new frame begins at the first unit that cannot belong to the frame before:
 * parameter sets, supplementary information or a delimiter behind a slice, or a slice that starts at
 * the picture's first block. That is the case when the bit behind the unit's header is set, in either
 * codec.
 */
#include "stream_file.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* What a unit means for the cutting. */
struct unit {
    bool slice;
    bool first_slice; /* of its picture */
    bool key;
    bool before_slices; /* stands in front of the first slice of a frame */
};

static struct unit h264_unit(const uint8_t *header)
{
    const int type = header[0] & 31;
    struct unit unit = {.slice = type == 1 || type == 5, .key = type == 5};
    unit.first_slice = unit.slice && (header[1] & 0x80) != 0;
    unit.before_slices = type >= 6 && type <= 9; /* information, parameter sets, delimiter */
    return unit;
}

static struct unit h265_unit(const uint8_t *header)
{
    const int type = header[0] >> 1 & 63;
    struct unit unit = {.slice = type < 32, .key = type >= 16 && type <= 21};
    unit.first_slice = unit.slice && (header[2] & 0x80) != 0;
    unit.before_slices = type >= 32 && type <= 39 && type != 36 && type != 37 && type != 38;
    return unit;
}

/* The start code at or behind a place, or the file's end. */
static size_t start_code_from(const struct stream_file *file, size_t at)
{
    for (; at + 3 < file->size; ++at) {
        const uint8_t *byte = file->bytes + at;
        if (byte[0] == 0 && byte[1] == 0 && byte[2] == 1) return at;
    }
    return file->size;
}

uint8_t *read_whole_file(const char *path, size_t *size)
{
    FILE *stream = fopen(path, "rb");
    if (!stream) return NULL;
    uint8_t *bytes = NULL;
    if (fseek(stream, 0, SEEK_END) == 0) {
        const long end = ftell(stream);
        rewind(stream);
        if (end > 0) bytes = malloc((size_t)end);
        if (bytes) *size = fread(bytes, 1, (size_t)end, stream);
    }
    fclose(stream);
    return bytes;
}

bool stream_file_open(struct stream_file *file, const char *path)
{
    const char *ending = strrchr(path, '.');
    *file = (struct stream_file){0};
    if (!ending || (strcmp(ending, ".h264") != 0 && strcmp(ending, ".h265") != 0)) return false;
    file->codec = strcmp(ending, ".h265") == 0 ? NVRHAL_CODEC_H265 : NVRHAL_CODEC_H264;
    file->bytes = read_whole_file(path, &file->size);
    return file->bytes != NULL;
}

void stream_file_close(struct stream_file *file)
{
    free(file->bytes);
    file->bytes = NULL;
    file->size = 0;
}

void stream_file_rewind(struct stream_file *file)
{
    file->at = 0;
}

bool stream_file_next(struct stream_file *file, struct stream_frame *frame)
{
    const size_t begin = start_code_from(file, file->at);
    bool slice_seen = false;
    size_t at = begin;
    frame->key = false;
    while (at + 5 < file->size) {
        const uint8_t *header = file->bytes + at + 3;
        const struct unit unit = file->codec == NVRHAL_CODEC_H265 ? h265_unit(header) : h264_unit(header);
        if (slice_seen && (unit.first_slice || unit.before_slices)) break;
        slice_seen = slice_seen || unit.slice;
        frame->key = frame->key || unit.key;
        at = start_code_from(file, at + 3);
    }
    if (!slice_seen) return false;
    if (at + 5 >= file->size) at = file->size;             /* a start code without a unit behind it */
    if (at < file->size && file->bytes[at - 1] == 0) --at; /* the long start code is the next frame's */
    frame->bytes = file->bytes + begin;
    frame->length = (uint32_t)(at - begin);
    if (begin > 0 && file->bytes[begin - 1] == 0) {
        --frame->bytes;
        ++frame->length;
    }
    file->at = at;
    return true;
}
