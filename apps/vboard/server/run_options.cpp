/* run_options.cpp - see run_options.h. */
#include "server/run_options.h"

#include <cstdio>
#include <cstring>

#include <arpa/inet.h>

#include <CLI/CLI.hpp>

namespace vboard_app
{
namespace
{

constexpr int kOwnFailure = 125; // as env(1) and timeout(1) tell it

/* [ADDRESS:]PORT; an IPv6 address in brackets. */
bool read_listen(const std::string &text, RunOptions *options)
{
    const size_t colon = text.rfind(':');
    std::string address = colon == std::string::npos ? options->address : text.substr(0, colon);
    const std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
    if (address == "localhost") address = "127.0.0.1";
    if (address.size() > 2 && address.front() == '[' && address.back() == ']')
        address = address.substr(1, address.size() - 2);
    if (port.empty() || port.size() > 5 || port.find_first_not_of("0123456789") != std::string::npos)
        return false;
    in6_addr bytes;
    if (inet_pton(AF_INET, address.c_str(), &bytes) != 1 && inet_pton(AF_INET6, address.c_str(), &bytes) != 1)
        return false;
    options->address = address;
    options->port = std::stoi(port);
    return options->port <= 65535;
}

} // namespace

std::optional<RunOptions> read_run_options(int argc, char **argv, int *status)
{
    RunOptions options;
    std::string listen;
    bool no_reboot = false;
    CLI::App app{"Run a program on the board, with the board's front in the browser.",
                 "vboard run [OPTIONS] -- PROGRAM"};
    app.prefix_command();
    app.add_option("--listen", listen, "Address and port; a free port of 127.0.0.1 without it")
        ->type_name("[ADDRESS:]PORT");
    app.add_option("--board", options.name, "Name of the board; the program's without it")->type_name("NAME");
    app.add_option("--folder", options.folder, "Where requests read and write files; this one without it")
        ->type_name("DIR");
    app.add_option("--record", options.record,
                   "Write what is pressed, pulled and set as a scenario, in that folder")
        ->type_name("FILE");
    app.add_flag("--no-reboot", no_reboot, "Watchdog and power off end the run, with status 124");
    app.add_flag("--stepped", options.stepped, "Take the clock before the program begins");
    app.add_flag("--quiet", options.quiet, "Do not print the page's address");

    int own = 0; // arguments before "--"
    while (own < argc && strcmp(argv[own], "--") != 0)
        ++own;
    const bool has_dashes = own < argc;
    try {
        app.parse(own, argv);
    } catch (const CLI::CallForHelp &help) {
        *status = app.exit(help);
        return {};
    } catch (const CLI::ParseError &error) {
        fprintf(stderr, "vboard run: %s\n", error.what());
        *status = kOwnFailure;
        return {};
    }
    *status = kOwnFailure;
    const std::vector<std::string> extras = app.remaining();
    if (!extras.empty() && (has_dashes || extras.front().compare(0, 1, "-") == 0)) {
        fprintf(stderr, "vboard run: there is no option \"%s\"; see vboard run --help\n",
                extras.front().c_str());
        return {};
    }
    options.program = extras;
    for (int i = own + 1; i < argc; ++i)
        options.program.emplace_back(argv[i]);
    options.reboots = !no_reboot;
    if (options.program.empty()) {
        fprintf(stderr, "vboard run: which program? vboard run [OPTIONS] -- PROGRAM [ARGUMENTS...]\n");
        return {};
    }
    if (!listen.empty() && !read_listen(listen, &options)) {
        fprintf(stderr, "vboard run: --listen wants [ADDRESS:]PORT with a numeric address, not \"%s\"\n",
                listen.c_str());
        return {};
    }
    return options;
}

} // namespace vboard_app
