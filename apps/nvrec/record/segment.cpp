/* segment.cpp - see segment.h. */
#include "record/segment.h"

#include <cstdio>
#include <ctime>
#include <filesystem>

namespace nvrec
{
namespace
{

constexpr int64_t kSecond_us = 1'000'000;

tm local_time(int64_t wall_clock_us)
{
    const auto seconds = static_cast<time_t>(wall_clock_us / kSecond_us);
    tm parts = {};
    localtime_r(&seconds, &parts);
    return parts;
}

/* Whether local clocks were set back lately, so that they have shown this time before. */
bool has_been_before(int64_t wall_clock_us)
{
    constexpr int64_t kLongestShift_us = 3 * 3600 * kSecond_us;
    const long offset_s = local_time(wall_clock_us).tm_gmtoff;
    const long offset_before_s = local_time(wall_clock_us - kLongestShift_us).tm_gmtoff;
    if (offset_before_s <= offset_s) return false;
    const int64_t first_us = wall_clock_us - (offset_before_s - offset_s) * kSecond_us;
    return local_time(first_us).tm_gmtoff == offset_before_s;
}

} // namespace

int64_t segment_slot(int64_t wall_clock_us, int segment_s)
{
    return (wall_clock_us / kSecond_us + local_time(wall_clock_us).tm_gmtoff) / segment_s;
}

Segment segment_of(int64_t wall_clock_us, int segment_s)
{
    return {segment_slot(wall_clock_us, segment_s), local_time(wall_clock_us).tm_gmtoff};
}

std::string segment_name(int channel, const std::string &stream, int64_t wall_clock_us)
{
    const tm parts = local_time(wall_clock_us);
    char time_text[32];
    std::strftime(time_text, sizeof time_text, "%Y%m%d-%H%M%S", &parts);
    char name[80];
    std::snprintf(name, sizeof name, "ch%02d-%s-%s", channel, stream.c_str(), time_text);
    if (!has_been_before(wall_clock_us)) return name;
    std::strftime(time_text, sizeof time_text, "%z", &parts);
    return std::string(name) + time_text;
}

std::string free_segment_path(const std::string &directory, const std::string &name,
                              const std::string &ending)
{
    const std::string stem = directory + "/" + name;
    std::string path = stem + ending;
    std::error_code ignored; /* other errors show when it is opened */
    for (int number = 2; std::filesystem::exists(path, ignored); ++number)
        path = std::string(stem).append("-").append(std::to_string(number)).append(ending);
    return path;
}

} // namespace nvrec
