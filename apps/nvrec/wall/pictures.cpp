/* pictures.cpp - see pictures.h. */
#include "wall/pictures.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "console/exit_code.h"
#include "console/text.h"
#include "host/host.h"
#include "wall/jpeg.h"

namespace nvrec
{

namespace
{

bool names_picture(const std::string &path)
{
    return small_letters(std::filesystem::path(path).extension().string()) == ".png" || names_jpeg(path);
}

} // namespace

PictureOrder picture_order(const std::string &text)
{
    const size_t comma = text.rfind(',');
    if (comma != std::string::npos && comma > 0) {
        double seconds = 0;
        const char *begin = text.data() + comma + 1;
        const char *end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(begin, end, seconds);
        if (error == std::errc() && stop == end && seconds >= 0 && seconds <= kLongest_s)
            return {text.substr(0, comma), seconds};
    }
    return {text, std::nullopt};
}

std::string picture_problem(const std::string &text)
{
    if (names_picture(picture_order(text).path)) return {};
    const size_t comma = text.rfind(',');
    if (comma == std::string::npos || !names_picture(text.substr(0, comma)))
        return "a picture is PNG or JPEG, name it .png, .jpg or .jpeg: " + text;
    return "no number of seconds, 0 or more, behind the comma: " + text;
}

std::string take_picture(const std::string &path)
{
    std::error_code ignored; /* the write below tells whether it worked */
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (!directory.empty()) std::filesystem::create_directories(directory, ignored);

    if (!names_jpeg(path)) return host::save_monitor_picture(path);
    host::MonitorPicture picture;
    std::string problem = host::take_monitor_picture(&picture);
    if (picture.rgb.empty()) return problem;
    const auto jpeg = jpeg_of_rgb(picture.width, picture.height, picture.rgb.data());
    if (!jpeg) return "this machine does not encode JPEG";
    return write_picture_file(path, jpeg->data(), jpeg->size()) ? problem : "cannot write it";
}

std::optional<double> next_picture_s(const std::vector<PictureOrder> &orders)
{
    std::optional<double> next;
    for (const PictureOrder &order : orders) {
        if (!order.done && order.at_s) next = std::min(next.value_or(*order.at_s), *order.at_s);
    }
    return next;
}

} // namespace nvrec
