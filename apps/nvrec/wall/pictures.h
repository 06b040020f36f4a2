/* pictures.h - pictures of the wall that the user asked for: PNG or JPEG files at given times, or at the end.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nvrec
{

struct PictureOrder {
    std::string path;
    std::optional<double> at_s; /* seconds after feeding began; nothing = at the end */
    bool done = false;
};

/** "FILE" or "FILE,SECONDS". */
PictureOrder picture_order(const std::string &text);

/** What is wrong with such a text: "x.png,soon" was hardly meant as a file's name. Empty = nothing. */
std::string picture_problem(const std::string &text);

/**
 * Write what the monitor shows: JPEG where the name ends in ".jpg" or ".jpeg", else PNG. Missing directories
 * are made.
 * @return an empty text, or why there is no picture.
 */
std::string take_picture(const std::string &path);

/** When the next picture that is not written yet is due, if any has a time. */
std::optional<double> next_picture_s(const std::vector<PictureOrder> &orders);

} // namespace nvrec
