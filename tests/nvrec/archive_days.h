/* archive_days.h - days of recordings in a directory, made of links to few files. For tests. */
#pragma once

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "nvrec_run.h"

namespace archive_days
{

constexpr int64_t kSecond_us = 1'000'000;
constexpr int64_t kHour_us = 3600 * kSecond_us;

/** The tests' place: where a day has an hour twice. */
inline void live_in_berlin()
{
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
}

/** Local time as microseconds since 1970. */
inline int64_t local(int year, int month, int day, int hour, int minute = 0, int second = 0)
{
    tm parts = {};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return mktime(&parts) * kSecond_us;
}

inline std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/** "ch03-main-20261121-140000.mp4" */
inline std::string recording_name(int channel, int64_t from_us, const std::string &ending = ".mp4",
                                  const std::string &stream = "main")
{
    const time_t seconds = from_us / kSecond_us;
    tm parts = {};
    localtime_r(&seconds, &parts);
    char text[64], name[128];
    strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts);
    snprintf(name, sizeof name, "ch%02d-%s-%s%s", channel, stream.c_str(), text, ending.c_str());
    return name;
}

/** A recording that begins then: a copy of a clip, or a link to it. */
inline std::string put(const std::string &directory, int channel, int64_t from_us,
                       const std::string &from = "seconds.mp4", bool link = false)
{
    const std::string path =
        directory + "/" + recording_name(channel, from_us, from.substr(from.find_last_of('.')));
    if (link) {
        std::error_code error;
        std::filesystem::create_hard_link(clip(from), path, error);
        if (!error) return path;
    }
    std::filesystem::copy_file(clip(from), path);
    return path;
}

} // namespace archive_days
