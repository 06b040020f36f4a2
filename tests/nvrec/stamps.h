/* stamps.h - stamps in pictures that the recorder wrote. For tests. */
#pragma once

#include <optional>

#include "nvrec_run.h"
#include "stamp.h"

namespace nvrec_test
{

/* The stamp of the pane at a place of a picture. */
inline std::optional<stamp::Stamp> stamp_in(const Picture &picture, int x, int y, int w, int h)
{
    if (x + w > picture.width || y + h > picture.height) return std::nullopt;
    std::vector<uint8_t> gray;
    for (int row = y; row < y + h; ++row) {
        for (int column = x; column < x + w; ++column) {
            const auto [red, green, blue] = picture.at(column, row);
            gray.push_back(static_cast<uint8_t>((red + green + blue) / 3));
        }
    }
    return stamp::read(gray.data(), w, w, h);
}

/* The stamp of a picture of which only the first 1 / times of its width and height is seen. */
inline std::optional<stamp::Stamp> stamp_enlarged(const Picture &picture, int times)
{
    const int width = picture.width * times, height = picture.height * times;
    std::vector<uint8_t> gray(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int row = 0; row < picture.height; ++row) {
        for (int column = 0; column < picture.width; ++column) {
            const auto [red, green, blue] = picture.at(column, row);
            gray[static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column)] =
                static_cast<uint8_t>((red + green + blue) / 3);
        }
    }
    return gray.empty() ? std::nullopt : stamp::read(gray.data(), width, width, height);
}

} // namespace nvrec_test
