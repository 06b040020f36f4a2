/*
 * image.h - BMP files in, QR codes out.
 */
#ifndef NVRHAL_IMAGE_H
#define NVRHAL_IMAGE_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A picture in the caller's memory. 16 bytes on the 32-bit target. */
typedef struct OsdSurface {
    uint32_t width;  /*  0  pixels                                */
    uint32_t height; /*  4  pixels                                */
    uint32_t pitch;  /*  8  bytes from one row to the next        */
    void *pixels;    /* 12  at least pitch * height bytes         */
} OsdSurface;

/**
 * The headers of a BMP file.
 * @param path              of the file
 * @param file_header_rest  out: the 12 bytes behind "BM"; the pixels' offset is in the last four
 * @param info              out: the 40-byte info header and the 4 bytes behind it; those of the 4 that
 *                          the file does not have are 0
 * @return 0, or -1
 * Errors: -1 for null, and for a file that cannot be opened, is no BMP file, or ends before its info header
 *         does. The outputs stay as they are.
 * Thread: any.
 * Ownership: the outputs are the caller's.
 */
NVRHAL_API int32_t GetBmpInfo(const char *path, uint8_t file_header_rest[12], uint8_t info[44]);

/**
 * Load an uncompressed BMP file of at least 16 bits a pixel whose rows stand from bottom to top: copy
 * 2 bytes a pixel of 16-bit files, otherwise 4 of which the last is set to 128. The pixels of a row must
 * make a multiple of 4 bytes in the file. Of the height the low 16 bits count. A file that ends early
 * fills the rows that it has, which is printed, and the result is 0.
 * @param path     of the file
 * @param surface  its pixels are large enough; width and height are set, and the pitch where it is 0.
 *                 At most a pitch of bytes a row is written.
 * @return 0, or -1
 * Errors: -1 for null, a file that cannot be opened or is not such a file, no memory; and, unless the
 *         height counts as 0, for a width below 1 and for 2 GiB of pixels or more. Width, height and pitch
 *         may be set by then.
 * Thread: any.
 * Ownership: surface and its pixels are the caller's.
 */
NVRHAL_API int32_t LoadBMP(const char *path, OsdSurface *surface);

/**
 * Load a BMP file as LoadBMP does, and convert it: 24-bit files to color_format. 16- and 32-bit ones are
 * copied, whatever the format; of all others the pixels are left out. The pitch becomes width * 2 below
 * format 6, else width * 4, and what does not fit in it is cut off: 32-bit files need format 6 or 7.
 * Rows in the file may have any length and are padded to multiples of 4 bytes; of that length the low 16
 * bits count, so that rows of 65536 bytes and more are not read right.
 * @param path          of the file
 * @param surface       its pixels are large enough; width, height and pitch are set
 * @param color_format  a row of s_OSDCompInfo, 0 to 7, other than 1 and 5
 * @return 0, or -1
 * Errors: -1 as LoadBMP, but for the length of the rows. Another format gives 0; of a 24-bit file it
 *         leaves the surface's pixels as they are and prints a line for each.
 * Thread: any.
 * Ownership: surface and its pixels are the caller's.
 */
NVRHAL_API int32_t LoadBMPEx(const char *path, OsdSurface *surface, uint32_t color_format);

/**
 * What follows the last '.' of a name.
 * @param name  zero-terminated
 * @return the extension; the end of the name when there is none; null for null
 * Errors: none.
 * Thread: any.
 * Ownership: the result points into name.
 */
NVRHAL_API const char *GetExtName(const char *name);

/**
 * LoadBMP behind a check of the extension, which must be "bmp" in lower case.
 * @param path     of the file
 * @param surface  as LoadBMP's
 * @return 0, or -1
 * Errors: -1 for another extension, and as LoadBMP.
 * Thread: any.
 * Ownership: surface and its pixels are the caller's.
 */
NVRHAL_API int32_t LoadImage(const char *path, OsdSurface *surface);

/**
 * LoadBMPEx behind a check of the extension, which must be "bmp" in lower case.
 * @param path          of the file
 * @param surface       as LoadBMPEx's
 * @param color_format  as LoadBMPEx's, 0 to 7
 * @return 0, or -1
 * Errors: -1 for another extension, and as LoadBMPEx.
 * Thread: any.
 * Ownership: surface and its pixels are the caller's.
 */
NVRHAL_API int32_t LoadImageEx(const char *path, OsdSurface *surface, uint32_t color_format);

/**
 * LoadImage into plain memory, the rows without gaps.
 * @param path    of the file
 * @param unused  any
 * @param buffer  out: large enough for the pixels
 * @return 0, or -1
 * Errors: as LoadImage.
 * Thread: any.
 * Ownership: buffer is the caller's.
 */
NVRHAL_API int32_t LoadBitMap2Surface(const char *path, const OsdSurface *unused, void *buffer);

/**
 * LoadImageEx.
 * @param path          of the file
 * @param surface       as LoadBMPEx's
 * @param color_format  as LoadBMPEx's, 0 to 7
 * @return 0, or -1
 * Errors: as LoadImageEx.
 * Thread: any.
 * Ownership: surface and its pixels are the caller's.
 */
NVRHAL_API int32_t CreateSurfaceByBitMap(const char *path, OsdSurface *surface, uint32_t color_format);

/**
 * Write a text as a QR code into an 8-bit grey BMP file, 6 x 6 pixels a module, error correction L.
 *
 * How much text fits depends on the text. The largest symbol holds 7089 digits, 4296 digits and capital
 * letters, or 2953 bytes of small letters or Chinese. A text that mixes them is cut into parts, each of
 * which takes room for its head, so that less fits: 2930 bytes of eight letters and eight digits in
 * turn, 2086 bytes of "a1111K" again and again, which was the worst among two thousand such patterns.
 * @param text       1 byte or more, zero-terminated; printed first
 * @param file_name  "-" = standard output, which is closed behind the image
 * Errors: every failure ends the process: status 1 (null, no text, more than fits, a file that cannot be
 *         written), -1 (no memory).
 * Thread: any.
 * Ownership: used during the call only.
 */
NVRHAL_API void qrencode(const char *text, const char *file_name);

#ifdef __cplusplus
}
#endif

#endif
