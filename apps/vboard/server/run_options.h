/* run_options.h - the command line of `vboard run`. */
#ifndef VBOARD_APP_SERVER_RUN_OPTIONS_H
#define VBOARD_APP_SERVER_RUN_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace vboard_app
{

struct RunOptions {
    std::string address = "127.0.0.1";
    int port = 0; // 0: one that is free
    std::string name;
    std::string folder = ".";
    std::string record; // empty: no scenario is recorded
    bool reboots = true;
    bool stepped = false;
    bool quiet = false;
    std::vector<std::string> program;
};

/* Nothing: it was all about help, or there was a mistake, which was told; `status` is what to end with. */
std::optional<RunOptions> read_run_options(int argc, char **argv, int *status);

} // namespace vboard_app

#endif
