/*
 * image.h - pictures in memory as R, G and B bytes: from the board, from and to PNG files, parts of them,
 * and how much two of them differ. Any thread.
 */
#ifndef VBOARD_APP_SCENARIO_IMAGE_H
#define VBOARD_APP_SCENARIO_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "board/board.h"

namespace vboard_app::scenario
{

/* A part of a picture, pixels. */
struct Region {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const Region &) const = default;
};

struct Image {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb; // rows without padding

    const uint8_t *at(int x, int y) const
    {
        return &rgb[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3];
    }
    uint8_t *at(int x, int y)
    {
        return &rgb[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3];
    }
};

Image black_image(int width, int height);
Image image_of(const Picture &picture);

/* Whether the region has an area and lies in a picture of this size. */
bool lies_in(const Region &region, int width, int height);

/* A part that lies in the image. */
Image part_of(const Image &image, const Region &region);

/* What stands in a PNG file; the reason in `problem` when it is none. */
std::optional<Image> read_png(const std::string &path, std::string &problem);

/* False: it cannot be written. */
bool write_png(const std::string &path, const Image &image);

/*
 * How many pixels differ, in percent: those of which a colour differs by more than 16 of 255, which is
 * less than the eye sees and more than a conversion of colours does. Images of different sizes differ by
 * 100 %.
 */
double difference_percent(const Image &one, const Image &other);

/* Actual, expected and their difference side by side; pixels that differ are red on a dark picture. */
Image side_by_side(const Image &actual, const Image &expected);

} // namespace vboard_app::scenario

#endif
