/* png_file.h - writing a picture to a PNG file. */
#ifndef VBOARD_PNG_FILE_H
#define VBOARD_PNG_FILE_H

#include <cstdint>

namespace vboard
{

/* Write R, G, B bytes to a PNG file. False: no memory, or the file cannot be written. */
bool write_png(const char *path, const uint8_t *rgb, int width, int height, int stride);

} // namespace vboard

#endif
