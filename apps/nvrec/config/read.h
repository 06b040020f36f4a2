/*
 * read.h - a configuration file, read and checked as a whole.
 *
 * Every fault is found in one pass, but for a file that is no TOML: a parser ends at its first error.
 * Paths in the file are taken from the file's directory.
 *
 * Passwords: in the file itself (`password`, or user:password@ in an address, or the page's token), or
 * in a file that the key `secrets` names. A file that holds one has to be its user's alone (mode 0600 or
 * less), and is refused otherwise. No fault repeats one.
 *
 * Threads: any.
 */
#pragma once

#include <string>

#include "config/config.h"
#include "config/faults.h"

namespace nvrec::config
{

struct Reading {
    Config config; /* of use only without faults */
    Faults faults;
};

Reading read_config(const std::string &path);

} // namespace nvrec::config
