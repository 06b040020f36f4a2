/*
 * jpeg.h - a look at an encoded JPEG picture: its size, its settings, and the mean colour of each block of
 * 8 x 8 pixels. That is enough to tell which picture of which channel it is.
 */
#ifndef CONFORMANCE_JPEG_H
#define CONFORMANCE_JPEG_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

enum { JPEG_MOST_BLOCKS = 1 << 16 };

typedef struct JpegLook {
    uint32_t width, height;              /* pixels                                                    */
    uint32_t restart_interval;           /* MCUs, 0 = none                                            */
    uint32_t restarts;                   /* restart markers met                                       */
    uint32_t quantizer;                  /* sum of the luma table: the finer the quality, the smaller */
    uint32_t across[3];                  /* blocks in a row, by component                             */
    uint32_t horizontal[3], vertical[3]; /* sampling factors                                */
    int16_t *mean[3];                    /* 0 to 255 + a little, by component and block               */
    const char *fault;                   /* why it is no such picture                                 */
} JpegLook;

/* Baseline, Huffman coded, one scan, three components. False: see `fault`. Free it in either case. */
bool jpeg_look(const uint8_t *bytes, size_t size, JpegLook *look);
void jpeg_free(JpegLook *look);

/* Mean colour of the block that a pixel lies in. Ends the point where the board decodes nothing. */
void jpeg_colour(const JpegLook *look, uint32_t x, uint32_t y, uint8_t rgb[3]);

#endif
