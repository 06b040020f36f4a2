/*
 * faults.h - the faults of a configuration: all of them at once, each with its place.
 *
 * Threads: one at a time.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nvrec::config
{

/** One fault. Its text never contains a password: what a user wrote is repeated only if it cannot be one. */
struct Fault {
    std::string file;
    int line = 0;    /* from 1; 0 = the file as a whole */
    std::string key; /* "camera[2].transport"; empty = none */
    std::string text;

    /** "nvrec.toml:12: camera[2].transport: ..." */
    std::string shown() const;
};

using Faults = std::vector<Fault>;

/** The candidate that a mistyped word is most likely meant to be; empty = it resembles none. */
std::string_view nearest(std::string_view word, const std::vector<std::string_view> &candidates);

/** `; did you mean "x"?`, or nothing. */
std::string suggestion(std::string_view word, const std::vector<std::string_view> &candidates);

} // namespace nvrec::config
