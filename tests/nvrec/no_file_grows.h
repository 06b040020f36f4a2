/* no_file_grows.h - to SQLite, a disk that takes nothing. For tests. */
#pragma once

#include <csignal>

#include <sys/resource.h>

/** Files of this process grow no further while it lives. */
class NoFileGrows
{
public:
    NoFileGrows()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit none = {512, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~NoFileGrows() { setrlimit(RLIMIT_FSIZE, &before_); }
    NoFileGrows(const NoFileGrows &) = delete;
    NoFileGrows &operator=(const NoFileGrows &) = delete;

private:
    rlimit before_ = {};
};
