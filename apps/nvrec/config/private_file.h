/*
 * private_file.h - reads a small text file, and tells whether anybody but its user can read it.
 *
 * Threads: any.
 */
#pragma once

#include <string>

namespace nvrec::config
{

struct FileText {
    std::string text;
    std::string error;       /* empty = it was read                             */
    bool is_private = false; /* its user's or root's, and nobody else's to read */
    unsigned mode = 0;       /* permission bits                                 */
};

/** Read a regular file of up to 1 MB. */
FileText read_file(const std::string &path);

} // namespace nvrec::config
