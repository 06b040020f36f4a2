/*
 * streams.h - encoded pictures that the suite carries along, made by make_streams.py.
 *
 * The quad streams show red, green, blue, yellow in their upper left, upper right, lower left and lower
 * right quarter. The streams named for a colour show nothing else. steps_h264 is grey and grows
 * lighter by 8 of luma a frame, from 40; its frames 0, 8 and 16 are key frames. broken_h264 begins with
 * cyan, is damaged from frame 2 to frame 7, and is whole and magenta from its key frame 8 on. large_h264 is
 * green, and far more work to decode than its bytes tell. No stream has B-frames.
 */
#ifndef CONFORMANCE_STREAMS_H
#define CONFORMANCE_STREAMS_H

#include <stdint.h>

#include "mi_vdec.h"

typedef struct TestStream {
    const char *name;
    uint32_t codec;          /* enum MI_VDEC_Codec         */
    uint32_t width, height;  /* pixels                     */
    uint32_t size;           /* bytes of all frames        */
    uint32_t frames;         /* how many                   */
    const uint8_t *bytes;    /* the frames, back to back   */
    const uint32_t *lengths; /* bytes of each frame        */
} TestStream;

extern const TestStream quad_h264, quad_h265, quad_jpeg;
extern const TestStream red_h264, green_h264, blue_h264, yellow_h264, cyan_h264, magenta_h264;
extern const TestStream steps_h264, broken_h264, large_h264;

#endif
