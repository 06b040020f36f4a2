/*
 * jpeg.h - a still picture as JPEG, by libavcodec's encoder for single pictures. Video is never encoded.
 *
 * What comes in: interleaved RGB, as the monitor gives it, or a decoded picture in planes of luma and
 * chroma with 8 to 16 bits a sample. What comes out: a JPEG file's bytes, full range, chroma as fine as
 * it came.
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct AVFrame;

namespace nvrec
{

/** @param rgb  width * height * 3 bytes. @return nothing when there is no encoder, or the size is none. */
std::optional<std::vector<uint8_t>> jpeg_of_rgb(int width, int height, const uint8_t *rgb);

/** @return nothing when there is no encoder, or the picture is none of the kinds above. */
std::optional<std::vector<uint8_t>> jpeg_of_picture(const AVFrame &picture);

/** Whether a file of that name is to be JPEG: it ends in ".jpg" or ".jpeg", in any case. */
bool names_jpeg(const std::string &path);

/** Write a whole file; missing directories are made. @return false = it could not be written. */
bool write_picture_file(const std::string &path, const void *bytes, size_t size);

} // namespace nvrec
