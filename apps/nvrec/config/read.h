/*
 * read.h - a configuration file, read and checked as a whole.
 *
 * All faults are found in one pass. Only in a file that is not TOML the parser stops at its first error.
 * Paths in the file are taken from the file's directory.
 *
 * Passwords: in the file itself (`password`, or user:password@ in an address, or the page's token), or
 * in a file that the key `secrets` names. A file that holds a password must be readable by its user alone
 * (mode 0600 or less), or it is refused. Faults never repeat a password.
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

/**
 * A fault for every file in place of a camera that is not there. A recorder starts without it all the same:
 * it may lie on a disk that comes later.
 */
Faults missing_files(const Config &config);

} // namespace nvrec::config
