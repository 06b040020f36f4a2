/* image_file.h - pictures of the board as others read them: cut out, scaled, encoded. Any thread. */
#ifndef VBOARD_APP_SERVER_IMAGE_FILE_H
#define VBOARD_APP_SERVER_IMAGE_FILE_H

#include <optional>
#include <string>
#include <vector>

#include "board/board.h"

namespace vboard_app
{

/* Black, as a monitor without a signal shows it. */
Picture black_picture(uint32_t width, uint32_t height);

/* A part: x, y, width, height; odd edges are moved outwards to even ones. @throws RequestError bad_parameter
 */
Picture cut_out(const Picture &picture, const std::vector<int> &region);

/*
 * Scaled to a width, its height in proportion and even.
 * @throws RequestError bad_parameter: it would be higher than 3840 pixels; refused: no memory
 */
Picture scaled(const Picture &picture, uint32_t width);

/* Encoded. @throws RequestError refused: no memory */
std::string as_png(const Picture &picture);
std::string as_jpeg(const Picture &picture, int quality);

} // namespace vboard_app

#endif
