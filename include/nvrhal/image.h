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
    uint32_t width;  /*  0  pixels                          */
    uint32_t height; /*  4                                  */
    uint32_t pitch;  /*  8  bytes from one row to the next  */
    void *pixels;    /* 12  at least pitch * height bytes   */
} OsdSurface;

/**
 * The headers of a BMP file.
 * @param file_header_rest  out: the 12 bytes behind "BM"; the pixels' offset is in the last four
 * @param info              out: the 40-byte info header and the 4 bytes behind it
 * @return 0, or -1 (cannot be opened, no BMP file, cut short). Thread: any.
 */
NVRHAL_API int32_t GetBmpInfo(const char *path, uint8_t file_header_rest[12], uint8_t info[44]);

/**
 * Load an uncompressed BMP file of at least 16 bits a pixel whose rows stand from bottom to top.
 * Files that end early fill the rows that they have.
 * @param surface  its pixels are the caller's and large enough; width and height are set, and the
 *                 pitch. At most a pitch of bytes a row is written.
 *
 * LoadBMP copies: 2 bytes a pixel for 16-bit files, otherwise 4 of which the last is set to 128.
 * Rows must be multiples of 4 bytes. A pitch that is not 0 is kept.
 * LoadBMPEx converts 24-bit files to color_format, a row of s_OSDCompInfo other than 1 and 5, and
 * copies 16- and 32-bit ones. The pitch is width * 2 below format 6, else width * 4.
 * @return 0 or -1. Thread: any.
 */
NVRHAL_API int32_t LoadBMP(const char *path, OsdSurface *surface);
NVRHAL_API int32_t LoadBMPEx(const char *path, OsdSurface *surface, uint32_t color_format);

/** What follows the last '.' of a name, its end when there is none, null for null. Thread: any. */
NVRHAL_API const char *GetExtName(const char *name);

/** The loaders behind a check of the extension, which must be "bmp" in lower case. @return 0 or -1. */
NVRHAL_API int32_t LoadImage(const char *path, OsdSurface *surface);
NVRHAL_API int32_t LoadImageEx(const char *path, OsdSurface *surface, uint32_t color_format);

/** LoadImage into plain memory, the rows without gaps; the second argument is not used. @return 0 or -1. */
NVRHAL_API int32_t LoadBitMap2Surface(const char *path, const OsdSurface *unused, void *buffer);

/** LoadImageEx. @return 0 or -1. */
NVRHAL_API int32_t CreateSurfaceByBitMap(const char *path, OsdSurface *surface, uint32_t color_format);

/**
 * Write a text as a QR code into an 8-bit grey BMP file, 6 x 6 pixels a module.
 * @param text       1 to 2953 bytes, printed first
 * @param file_name  "-" = standard output, which is closed behind the image
 * Every failure ends the process: status 1 (no or too long a text, no file), -1 (no memory).
 * Thread: any.
 */
NVRHAL_API void qrencode(const char *text, const char *file_name);

#ifdef __cplusplus
}
#endif

#endif
